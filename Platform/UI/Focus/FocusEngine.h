#pragma once

#include "FocusUpdateContext.h"

#include <QMetaObject>
#include <QPointer>
#include <QRectF>

#include <functional>
#include <vector>

class QQuickItem;

namespace virlo
{

class FocusEnvironment;
class View;

/// Keeps the focus of one presented screen: exactly one view is focused while any can be. When the focused
/// view is removed, hidden or can no longer be focused, the focus moves on at once, by the preferences of the
/// environments around it from the innermost outwards; a view that becomes focusable while none is focused
/// gets it. Owned by the presentation; main thread.
///
/// A view can be focused if it `canBecomeFocused`, has a size, is visible, enabled and not fully transparent,
/// with all its superviews, and does not lie under a visible view that obscures focus.
class FocusEngine
{
public:
    /// `root` is the screen's own environment; its view is loaded and outlives the engine. Nothing is focused
    /// until `validate`. `willMove` is called before each move of the focus.
    FocusEngine(FocusEnvironment& root, View& rootView, std::function<void()> willMove);
    ~FocusEngine();
    FocusEngine(const FocusEngine&) = delete;
    FocusEngine& operator=(const FocusEngine&) = delete;

    [[nodiscard]] View* focusedView() const { return m_focused; }

    /// Moves the focus by geometry and guides; returns whether it moved.
    bool move(FocusHeading heading);

    void setNeedsUpdate(FocusEnvironment& environment);
    void updateIfNeeded();
    /// Checks whether the focused view may keep the focus, and finds one where none is focused.
    void validate();

    /// The engine of the screen that shows `view`; null if none does.
    [[nodiscard]] static FocusEngine* engineOf(const View& view);
    /// Called by a view's destructor.
    static void viewIsDestroyed(View& view);

private:
    struct Candidate {
        QRectF rect;
        View* view; ///< that gets the focus
    };

    using Environments = std::vector<FocusEnvironment*>;
    using Views = std::vector<View*>;

    [[nodiscard]] Views focusableViews() const;
    [[nodiscard]] std::vector<Candidate> candidates(const Views& focusable, const QQuickItem* scroller) const;
    [[nodiscard]] View* bestOf(const std::vector<Candidate>& candidates, FocusHeading heading) const;
    void addGuides(const QQuickItem& item, const Views& focusable, std::vector<Candidate>& candidates) const;
    [[nodiscard]] QRectF rectOf(const QQuickItem& item) const;
    [[nodiscard]] QRectF visibleRectOf(const QQuickItem& item, const QQuickItem* scroller) const;
    [[nodiscard]] Environments environmentsInTree() const;
    [[nodiscard]] static Environments chainOf(View* view);
    [[nodiscard]] View* resolve(FocusEnvironment& environment, const Views& focusable) const;
    [[nodiscard]] View* firstInside(const FocusEnvironment& environment, const Views& focusable) const;
    [[nodiscard]] View* successor(const Views& focusable) const;

    bool focus(View* next, FocusHeading heading, bool mayBeRefused);
    void follow(View* view);

    FocusEnvironment& m_root;
    View& m_rootView;
    QPointer<View> m_focused;
    std::function<void()> m_willMove;
    // Both may hold destroyed environments: each is compared with those in the tree before it is used.
    Environments m_requesting; ///< asked for an update
    Environments m_around;     ///< held the focused view, innermost first
    std::vector<QMetaObject::Connection> m_connections;
    bool m_moving = false;
    bool m_validatesAgain = false;
};

} // namespace virlo
