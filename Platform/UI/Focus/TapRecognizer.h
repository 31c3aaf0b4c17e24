#pragma once

#include "Press.h"

#include <functional>
#include <vector>

namespace virlo
{

/// Calls its action when a press of an allowed type has begun and ended while it was attached to the focused
/// view or one of its superviews (`View::addGestureRecognizer`). The recogniser nearest to the focused view
/// takes the press; responders are not told of it. The action may remove the recogniser and dismiss the
/// screen. Main thread.
class TapRecognizer
{
public:
    explicit TapRecognizer(std::function<void()> action);

    /// Select alone at first.
    void setAllowedPressTypes(std::vector<PressType> types);

    [[nodiscard]] const std::vector<PressType>& allowedPressTypes() const noexcept { return m_types; }

    [[nodiscard]] bool allows(PressType type) const;

    void perform() const;

private:
    std::function<void()> m_action;
    std::vector<PressType> m_types{PressType::Select};
};

} // namespace virlo
