#pragma once

#include "KeyboardLayout.h"
#include "ViewController.h"

#include <QPointer>

#include <functional>

namespace virlo
{

class TextField;

/// An on-screen keyboard at the foot of the canvas that types into a text field by the remote's arrows and
/// Select. Shown by `presentViewController`, it has the focus alone until its key Done or Menu is pressed, or
/// whoever shows it dismisses it. A real keyboard's letters go to the field, too. Main thread.
///
/// First focus: the layout's first key. Back: Menu.
class KeyboardController : public ViewController
{
public:
    /// Called once, when it has left the screen: with true after Done, with false otherwise.
    using DidEnd = std::function<void(bool done)>;

    /// Types nothing once `field` is destroyed.
    KeyboardController(TextField& field, KeyboardLayout layout, DidEnd didEnd);
    ~KeyboardController() override;

    /// The y of its upper edge on the canvas: what lies above it stays visible.
    [[nodiscard]] double top() const;

    void textTyped(const QString& text) override;

    [[nodiscard]] View* preferredFocusedView() override { return m_first; }

protected:
    void viewDidLoad() override;
    void viewDidDisappear() override;

private:
    void addRow(View& panel, const KeyboardLayout::Row& row, double left, double y);
    void press(const KeyboardLayout::Key& key);
    void setDomain(const QString& domain);

    const KeyboardLayout m_layout;
    QPointer<TextField> m_field;
    DidEnd m_didEnd;
    bool m_isDone = false;
    View* m_first = nullptr; ///< a view of its own
};

} // namespace virlo
