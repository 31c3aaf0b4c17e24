#pragma once

#include "Control.h"

#include <QPointer>

namespace virlo
{

/// A control that holds one line of text. The scene puts a TextInput into it (`input`), which shows the text
/// and takes a real keyboard's keys while the field is focused; without one it shows and holds nothing.
/// Control characters and line ends never get in, whatever is typed, pasted or set. Main thread.
class TextField : public virlo::Control
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem* input READ input WRITE setInput NOTIFY inputChanged FINAL)
    Q_PROPERTY(QString placeholder READ placeholder WRITE setPlaceholder NOTIFY placeholderChanged FINAL)

public:
    explicit TextField(QQuickItem* superview = nullptr);

    [[nodiscard]] QQuickItem* input() const { return m_input; }

    void setInput(QQuickItem* input);

    [[nodiscard]] QString text() const;
    void setText(const QString& text);

    [[nodiscard]] QString placeholder() const { return m_placeholder; }

    /// Also the accessible name.
    void setPlaceholder(const QString& placeholder);

    // Editing at the cursor, as an on-screen keyboard does it
    void insert(const QString& text);
    void deleteBackward();
    /// By so many characters, to the left where negative.
    void moveCursor(int by);

signals:
    void inputChanged();
    void placeholderChanged();
    void textChanged();

protected:
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::EditableText; }

private slots:
    void inputTextDidChange();

private:
    [[nodiscard]] int cursor() const;

    QPointer<QQuickItem> m_input;
    QString m_placeholder;
};

} // namespace virlo
