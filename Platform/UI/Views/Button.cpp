#include "Button.h"

#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "PaintedView.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

constexpr double sideMargin = 24;
constexpr double iconGap = 12;

} // namespace

/// The focus ring: a rounded line outside the button's edge between two black ones, so that it is visible on
/// any image and beside any button.
class Button::Ring : public PaintedView
{
public:
    explicit Ring(Button& button) : PaintedView(&button), m_button(button) { setVisible(false); }

    void fit()
    {
        const double extent = gap + m_width + dark;
        setFrame(
            QRectF(0, 0, m_button.width(), m_button.height()).adjusted(-extent, -extent, extent, extent));
        setNeedsDisplay();
    }

    [[nodiscard]] QColor color() const { return m_color; }

    void setColor(const QColor& color)
    {
        m_color = color;
        setNeedsDisplay();
    }

    [[nodiscard]] double lineWidth() const { return m_width; }

    void setLineWidth(double width)
    {
        m_width = std::max(0.0, width);
        fit();
    }

    void follow() { setVisible(m_button.isFocused() && m_width > 0); }

protected:
    void paint(QPainter& painter) override
    {
        const auto line = [&](const QColor& color, double inset, double width) {
            const double radius = m_button.cornerRadius() + gap + m_width + dark - inset;
            painter.setPen(QPen(color, width));
            painter.drawRoundedRect(bounds().adjusted(inset, inset, -inset, -inset), radius, radius);
        };
        painter.setBrush(Qt::NoBrush);
        line(Qt::black, dark / 2, dark);
        line(m_color, dark + m_width / 2, m_width);
        line(Qt::black, dark + m_width + gap / 2, gap);
    }

private:
    static constexpr double gap = 4;
    static constexpr double dark = 4;

    Button& m_button;
    QColor m_color = Qt::white;
    double m_width = 5;
};

Button::Button(QQuickItem* superview)
    : Control(superview)
    , m_icon(new ImageView(this))
    , m_title(new Label(this))
    , m_ring(new Ring(*this))
{
    m_icon->setContentMode(ImageView::ContentMode::Center);
    m_title->setTextColor(Qt::white);
    m_title->setFontSize(38);
    m_title->setTextAlignment(Qt::AlignCenter);
    connect(m_title, &QQuickItem::implicitWidthChanged, this, &Button::layOutContent);
    connect(this, &View::focusedChanged, m_ring, &Ring::follow);
    connect(this, &View::layerChanged, m_ring, &Ring::setNeedsDisplay);
}

Button::~Button() = default;

QString Button::title() const
{
    return m_title->text();
}

void Button::setTitle(const QString& title)
{
    if (title == m_title->text())
        return;
    const QString named = m_title->text().trimmed();
    m_title->setText(title);
    if (accessibleName().isEmpty() || accessibleName() == named)
        setAccessibleName(title.trimmed());
    layOutContent();
    emit titleChanged();
}

QColor Button::titleColor() const
{
    return m_title->textColor();
}

void Button::setTitleColor(const QColor& color)
{
    m_title->setTextColor(color);
    emit styleChanged();
}

double Button::fontSize() const
{
    return m_title->fontSize();
}

void Button::setFontSize(double points)
{
    m_title->setFontSize(points);
    layOutContent();
    emit styleChanged();
}

std::shared_ptr<const Image> Button::icon() const
{
    return m_icon->image();
}

void Button::setIcon(std::shared_ptr<const Image> icon)
{
    m_icon->setImage(std::move(icon));
    layOutContent();
}

void Button::setIconHeight(double height)
{
    m_iconHeight = height;
    m_icon->setContentMode(height > 0 ? ImageView::ContentMode::Fill : ImageView::ContentMode::Center);
    layOutContent();
    emit styleChanged();
}

QColor Button::focusRingColor() const
{
    return m_ring->color();
}

void Button::setFocusRingColor(const QColor& color)
{
    m_ring->setColor(color);
    emit styleChanged();
}

double Button::focusRingWidth() const
{
    return m_ring->lineWidth();
}

void Button::setFocusRingWidth(double width)
{
    m_ring->setLineWidth(width);
    m_ring->follow();
    emit styleChanged();
}

void Button::geometryChange(const QRectF& now, const QRectF& before)
{
    Control::geometryChange(now, before);
    layOutContent();
    m_ring->fit();
}

void Button::layOutContent()
{
    QSizeF iconSize =
        m_icon->hasImage() ? QSizeF(m_icon->image()->width(), m_icon->image()->height()) : QSizeF(0, 0);
    if (m_iconHeight > 0 && iconSize.height() > 0)
        iconSize *= m_iconHeight / iconSize.height();
    const double gap = m_icon->hasImage() && !title().isEmpty() ? iconGap : 0;
    const double room = std::max(0.0, width() - 2 * sideMargin - iconSize.width() - gap);
    const double titleWidth = std::min(room, std::ceil(m_title->implicitWidth()));
    const double left = std::floor((width() - iconSize.width() - gap - titleWidth) / 2);
    m_icon->setFrame(
        {left, std::floor((height() - iconSize.height()) / 2), iconSize.width(), iconSize.height()});
    m_title->setFrame({left + iconSize.width() + gap, 0, titleWidth, height()});
    setImplicitSize(std::ceil(m_title->implicitWidth()) + iconSize.width() + gap + 2 * sideMargin,
                    std::max(m_title->implicitHeight(), iconSize.height()) + sideMargin);
}

} // namespace virlo
