#include "TextField.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace virlo
{

namespace
{

bool breaksTheLine(QChar character)
{
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

} // namespace

TextField::TextField(QQuickItem* superview) : Control(superview)
{
    // The focus of the window passes on to the input.
    setFlag(ItemIsFocusScope);
}

void TextField::setInput(QQuickItem* input)
{
    if (m_input == input)
        return;
    if (m_input)
        m_input->disconnect(this);
    m_input = input;
    if (m_input) {
        m_input->setFocus(true);
        // The class of QML's TextInput is private to Qt: its properties and methods are called by name.
        connect(m_input, SIGNAL(textChanged()), this, SLOT(inputTextDidChange()));
    }
    emit inputChanged();
}

QString TextField::text() const
{
    return m_input ? m_input->property("text").toString() : QString();
}

void TextField::setText(const QString& text)
{
    if (m_input)
        m_input->setProperty("text", text);
}

void TextField::setPlaceholder(const QString& placeholder)
{
    if (placeholder == m_placeholder)
        return;
    m_placeholder = placeholder;
    setAccessibleName(placeholder);
    emit placeholderChanged();
}

int TextField::cursor() const
{
    return m_input ? m_input->property("cursorPosition").toInt() : 0;
}

void TextField::insert(const QString& text)
{
    if (m_input)
        QMetaObject::invokeMethod(m_input, "insert", Q_ARG(int, cursor()), Q_ARG(QString, text));
}

void TextField::deleteBackward()
{
    const int end = cursor();
    if (end == 0)
        return;
    // An emoji of several code units goes as a whole.
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text());
    characters.setPosition(end);
    const auto start = static_cast<int>(std::max<qsizetype>(0, characters.toPreviousBoundary()));
    QMetaObject::invokeMethod(m_input, "remove", Q_ARG(int, start), Q_ARG(int, end));
}

void TextField::moveCursor(int by)
{
    if (!m_input)
        return;
    const int last = static_cast<int>(text().size());
    m_input->setProperty("cursorPosition", std::clamp(cursor() + by, 0, last));
}

void TextField::inputTextDidChange()
{
    QString cleaned = text();
    const auto firstBad = std::remove_if(cleaned.begin(), cleaned.end(), &breaksTheLine);
    if (firstBad == cleaned.end()) {
        emit textChanged();
        return;
    }
    cleaned.erase(firstBad, cleaned.end());
    setText(cleaned); // comes back here
}

} // namespace virlo
