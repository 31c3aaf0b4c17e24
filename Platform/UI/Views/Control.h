#pragma once

#include "View.h"

#include <functional>

namespace virlo
{

/// A focusable view with an action. A Select press highlights it from key down to key up; at key up its
/// primary action fires. A cancelled press fires nothing.
class Control : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool highlighted READ isHighlighted NOTIFY highlightedChanged FINAL)

public:
    explicit Control(QQuickItem* superview = nullptr);

    /// The action of the primary event; one at a time, empty for none. It may dismiss the screen.
    void setPrimaryAction(std::function<void()> action);
    /// Fires `primaryActionTriggered` and the action. A control that is not `enabled` fires nothing.
    void sendPrimaryAction();

    [[nodiscard]] bool isHighlighted() const noexcept { return m_highlighted; }

    virtual void setHighlighted(bool highlighted);

    /// Where `focusable` (true at first) and `enabled`.
    [[nodiscard]] bool canBecomeFocused() const override;
    void pressesBegan(const std::vector<Press>& presses) override;
    void pressesEnded(const std::vector<Press>& presses) override;
    void pressesCancelled(const std::vector<Press>& presses) override;

signals:
    void primaryActionTriggered();
    void highlightedChanged();

protected:
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Button; }

private:
    std::function<void()> m_action;
    bool m_highlighted = false;
};

} // namespace virlo
