#include "Label.h"

#include <private/qquicktext_p.h>

#include <algorithm>
#include <cmath>

// The library does not export this type's functions: it is used by its properties.
Q_DECLARE_OPAQUE_POINTER(QQuickTextLine*)

namespace virlo
{

Label::Label(QQuickItem* superview) : View(superview), m_text(new QQuickText(this))
{
    // Always explicit, and first of all: without an alignment of its own, an empty text asks the input method
    // for its direction, which crashes on a Wayland display without a seat.
    alignByScript();
    m_text->setTextFormat(QQuickText::PlainText);
    m_text->setElideMode(QQuickText::ElideRight);
    m_text->setVAlign(QQuickText::AlignVCenter);
    setFontSize(m_fontSize);
    connect(m_text, &QQuickText::implicitWidthChanged, this,
            [this] { setImplicitSize(m_text->implicitWidth(), m_text->implicitHeight()); });
    connect(m_text, &QQuickText::implicitHeightChanged, this,
            [this] { setImplicitSize(m_text->implicitWidth(), m_text->implicitHeight()); });
}

QString Label::text() const
{
    return m_text->text();
}

void Label::setText(const QString& text)
{
    if (text == m_text->text())
        return;
    m_text->setText(text);
    alignByScript();
    emit textChanged();
}

void Label::alignByScript()
{
    if (m_alignsByScript)
        m_text->setHAlign(text().isRightToLeft() ? QQuickText::AlignRight : QQuickText::AlignLeft);
}

QColor Label::textColor() const
{
    return m_text->color();
}

void Label::setTextColor(const QColor& color)
{
    if (color == m_text->color())
        return;
    m_text->setColor(color);
    emit styleChanged();
}

void Label::setFontSize(double points)
{
    m_fontSize = points;
    QFont font = m_text->font();
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(points))));
    m_text->setFont(font);
    emit styleChanged();
}

bool Label::isBold() const
{
    return m_text->font().bold();
}

void Label::setBold(bool bold)
{
    QFont font = m_text->font();
    font.setBold(bold);
    m_text->setFont(font);
    emit styleChanged();
}

Qt::Alignment Label::textAlignment() const
{
    return Qt::Alignment(static_cast<int>(m_text->hAlign())) |
           Qt::Alignment(static_cast<int>(m_text->vAlign()));
}

void Label::setTextAlignment(Qt::Alignment alignment)
{
    const int horizontal = (alignment & Qt::AlignHorizontal_Mask).toInt();
    const int vertical = (alignment & Qt::AlignVertical_Mask).toInt();
    m_alignsByScript = horizontal == 0;
    if (!m_alignsByScript)
        m_text->setHAlign(static_cast<QQuickText::HAlignment>(horizontal));
    alignByScript();
    m_text->setVAlign(vertical != 0 ? static_cast<QQuickText::VAlignment>(vertical)
                                    : QQuickText::AlignVCenter);
    emit styleChanged();
}

bool Label::wraps() const
{
    return m_text->wrapMode() != QQuickText::NoWrap;
}

void Label::setWraps(bool wraps)
{
    m_text->setWrapMode(wraps ? QQuickText::Wrap : QQuickText::NoWrap);
    emit styleChanged();
}

void Label::setExclusion(const QRectF& exclusion)
{
    if (exclusion == m_exclusion)
        return;
    m_exclusion = exclusion;
    // Only while it is needed: with a listener, text is laid out line by line.
    disconnect(m_lineLayout);
    if (!exclusion.isEmpty())
        m_lineLayout =
            connect(m_text, &QQuickText::lineLaidOut, this, [this](QQuickTextLine* line) { fitLine(*line); });
    m_text->forceLayout();
    emit styleChanged();
}

void Label::fitLine(QObject& line) const
{
    const double top = line.property("y").toDouble();
    const double bottom = top + line.property("height").toDouble();
    if (top < m_exclusion.bottom() && bottom > m_exclusion.top())
        line.setProperty("width", std::clamp(m_exclusion.left(), 0.0, line.property("width").toDouble()));
}

void Label::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    m_text->setSize(now.size());
}

} // namespace virlo
