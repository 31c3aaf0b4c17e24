#include "ActivityIndicatorView.h"

#include "Animation.h"
#include "PaintedView.h"

#include <QPainter>
#include <QQuickWindow>

#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

constexpr double usualSize = 74;
constexpr int spokes = 12;

} // namespace

/// The wheel's image, drawn once and turned by steps of one spoke.
class ActivityIndicatorView::Wheel : public PaintedView
{
public:
    using PaintedView::PaintedView;

    QColor color = Qt::white;

protected:
    void paint(QPainter& painter) override
    {
        const double radius = std::min(width(), height()) / 2;
        const double thickness = radius * 0.16;
        painter.translate(width() / 2, height() / 2);
        for (int spoke = 0; spoke < spokes; ++spoke) {
            QColor shade = color;
            shade.setAlphaF(color.alphaF() *
                            static_cast<float>(1 - 0.75 * (spokes - 1 - spoke) / (spokes - 1)));
            painter.setPen(QPen(shade, thickness, Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius + thickness));
            painter.rotate(360.0 / spokes);
        }
    }
};

ActivityIndicatorView::ActivityIndicatorView(QQuickItem* superview)
    : View(superview)
    , m_wheel(new Wheel(this))
{
    setImplicitSize(usualSize, usualSize);
    m_wheel->setVisible(false);
    m_timer.setInterval(1000 / spokes);
    connect(&m_timer, &QTimer::timeout, m_wheel,
            [this] { m_wheel->setRotation(std::fmod(m_wheel->rotation() + 360.0 / spokes, 360)); });
}

ActivityIndicatorView::~ActivityIndicatorView() = default;

QColor ActivityIndicatorView::color() const
{
    return m_wheel->color;
}

void ActivityIndicatorView::setColor(const QColor& color)
{
    if (std::exchange(m_wheel->color, color) == color)
        return;
    m_wheel->setNeedsDisplay();
    emit colorChanged();
}

void ActivityIndicatorView::startAnimating()
{
    if (std::exchange(m_animating, true))
        return;
    m_wheel->setVisible(true);
    updateTimer();
    emit animatingChanged();
}

void ActivityIndicatorView::stopAnimating()
{
    if (!std::exchange(m_animating, false))
        return;
    m_wheel->setVisible(false);
    updateTimer();
    emit animatingChanged();
}

void ActivityIndicatorView::updateTimer()
{
    const bool spins = m_animating && isVisible() && window() != nullptr && window()->isVisible();
    if (spins && !m_timer.isActive())
        m_timer.start();
    else if (!spins)
        m_timer.stop();
}

void ActivityIndicatorView::itemChange(ItemChange change, const ItemChangeData& data)
{
    View::itemChange(change, data);
    if (change == ItemSceneChange) {
        disconnect(m_windowShown);
        if (data.window != nullptr)
            m_windowShown =
                connect(data.window, &QWindow::visibleChanged, this, &ActivityIndicatorView::updateTimer);
    }
    if (change == ItemSceneChange || change == ItemVisibleHasChanged)
        updateTimer();
}

void ActivityIndicatorView::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    m_wheel->setFrame(QRectF(QPointF(), now.size()));
}

} // namespace virlo
