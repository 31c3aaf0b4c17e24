#pragma once

#include "FocusAnimationCoordinator.h"
#include "FocusUpdateContext.h"

namespace virlo
{

/// A part of a screen that takes part in the choice of the focus: every view and every view controller. Main
/// thread.
class FocusEnvironment
{
public:
    virtual ~FocusEnvironment() = default;

    /// The view that should get the focus when it enters this environment; the search continues with that
    /// view's own preference until a view names itself. Null: the first focusable view inside, in reading
    /// order.
    [[nodiscard]] virtual View* preferredFocusedView() = 0;

    /// Asked of every environment that holds the previous or the next view, innermost first; one refusal
    /// stops the move. A move away from a view that cannot keep the focus (gone, hidden, no longer focusable)
    /// is not asked.
    [[nodiscard]] virtual bool shouldUpdateFocusInContext(const FocusUpdateContext& context);

    /// Called on the same environments in the same order, after the move.
    virtual void didUpdateFocusInContextWithAnimationCoordinator(const FocusUpdateContext& context,
                                                                 FocusAnimationCoordinator& coordinator);

    /// Requests that the focus move to this environment's preference, in a later turn of the main loop or at
    /// the next `updateFocusIfNeeded`. No effect while a view outside this environment has the focus.
    void setNeedsFocusUpdate();
    /// Applies at once the requests of all environments of the screen.
    void updateFocusIfNeeded();

protected:
    /// The view whose tree this environment spans; null while it has none.
    [[nodiscard]] virtual View* focusEnvironmentView() = 0;
    /// The environment that contains this one.
    [[nodiscard]] virtual FocusEnvironment* parentFocusEnvironment() = 0;

    friend class FocusEngine;
};

} // namespace virlo
