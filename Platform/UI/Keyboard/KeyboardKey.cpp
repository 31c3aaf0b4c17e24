#include "KeyboardKey.h"

#include "Label.h"

namespace virlo
{

namespace
{

constexpr double keyCorner = 10;
constexpr double keyFontSize = 36;
constexpr double focusScale = 1.08;
constexpr QColor keyColor(0x2f, 0x39, 0x4e);
constexpr QColor pressedKeyColor(0x9f, 0xb8, 0xf2);
constexpr QColor inkOnFocus(0x10, 0x14, 0x1f);

} // namespace

KeyboardKey::KeyboardKey(const QString& text) : m_label(new Label(this))
{
    setCornerRadius(keyCorner);
    m_label->setFontSize(keyFontSize);
    m_label->setTextAlignment(Qt::AlignCenter);
    m_label->setText(text);
    connect(this, &View::focusedChanged, this, &KeyboardKey::updateLook);
    connect(this, &Control::highlightedChanged, this, &KeyboardKey::updateLook);
    updateLook();
}

void KeyboardKey::geometryChange(const QRectF& now, const QRectF& before)
{
    Control::geometryChange(now, before);
    m_label->setFrame(QRectF(QPointF(), now.size()));
}

void KeyboardKey::updateLook()
{
    const bool focused = isFocused();
    setBackgroundColor(isHighlighted() ? pressedKeyColor : focused ? QColor(Qt::white) : keyColor);
    m_label->setTextColor(focused ? inkOnFocus : QColor(Qt::white));
    m_label->setBold(focused);
    setTransform(focused ? AffineTransform::scale(focusScale, focusScale) : AffineTransform());
    setZ(focused ? 1 : 0);
}

} // namespace virlo
