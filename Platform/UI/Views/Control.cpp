#include "Control.h"

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

bool holdsSelect(const std::vector<Press>& presses)
{
    return std::any_of(presses.begin(), presses.end(),
                       [](const Press& press) { return press.type == PressType::Select; });
}

} // namespace

Control::Control(QQuickItem* superview) : View(superview)
{
    setFocusable(true);
}

void Control::setPrimaryAction(std::function<void()> action)
{
    m_action = std::move(action);
}

void Control::sendPrimaryAction()
{
    if (!isEnabled())
        return;
    // The action may set another, or end the screen.
    const auto action = m_action;
    emit primaryActionTriggered();
    if (action)
        action();
}

void Control::setHighlighted(bool highlighted)
{
    if (std::exchange(m_highlighted, highlighted) == highlighted)
        return;
    emit highlightedChanged();
}

bool Control::canBecomeFocused() const
{
    return focusable() && isEnabled();
}

void Control::pressesBegan(const std::vector<Press>& presses)
{
    if (holdsSelect(presses))
        setHighlighted(true);
    else
        View::pressesBegan(presses);
}

void Control::pressesEnded(const std::vector<Press>& presses)
{
    if (!holdsSelect(presses)) {
        View::pressesEnded(presses);
        return;
    }
    setHighlighted(false);
    sendPrimaryAction();
}

void Control::pressesCancelled(const std::vector<Press>& presses)
{
    if (holdsSelect(presses))
        setHighlighted(false);
    else
        View::pressesCancelled(presses);
}

} // namespace virlo
