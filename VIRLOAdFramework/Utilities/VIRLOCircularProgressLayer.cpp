#include "VIRLOCircularProgressLayer.h"

#include <QPainter>
#include <QPainterPath>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

constexpr virlo::Seconds stepDuration{1.0};
/// The next second's tick may come a frame or two after the last frame of this second's animation. Its end
/// value is shown until then, or the ring would flash its resting value each second.
constexpr virlo::Seconds tickSlack{0.1};
/// A full ring stays open by less than a pixel, so that it is still drawn as a slice.
constexpr double fullest = 0.9999998807907104;

} // namespace

VIRLOCircularProgressLayer::VIRLOCircularProgressLayer(QQuickItem* superview) : PaintedView(superview) {}

VIRLOCircularProgressLayer::~VIRLOCircularProgressLayer()
{
    removeProgressAnimation();
}

void VIRLOCircularProgressLayer::setProgress(double progress)
{
    m_progress = progress;
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::addProgressAnimation(double from, double to)
{
    removeProgressAnimation();
    m_animated = from;
    const virlo::Seconds whole = stepDuration + tickSlack;
    // Redrawn when its end has moved by a pixel: anything less is invisible, and would be drawn sixty times a
    // second.
    const double pixels = std::numbers::pi * std::min(width(), height()) * resolution();
    const auto step = [this, from, to, whole, pixels](double share) {
        const double now = from + (to - from) * std::min(1.0, share * (whole / stepDuration));
        const bool isVisible = std::round(now * pixels) != std::round(m_animated * pixels);
        m_animated = now;
        if (!isVisible)
            return;
        setNeedsDisplay();
    };
    // Called in a later turn of the loop, when the layer may be destroyed or another animation may run.
    const auto ended = [layer = QPointer(this), generation = ++m_generation](bool finished) {
        if (!finished || !layer || layer->m_generation != generation)
            return;
        layer->m_animation.reset();
        layer->setNeedsDisplay();
    };
    m_animation = virlo::Animation::run(whole, virlo::Animation::Curve::Linear, step, ended);
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::removeProgressAnimation()
{
    if (const auto animation = std::move(m_animation))
        animation->cancel();
    m_animation.reset();
    ++m_generation;
}

void VIRLOCircularProgressLayer::setTrackTintColor(const QColor& color)
{
    m_trackTintColor = color;
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::setProgressTintColor(const QColor& color)
{
    m_progressTintColor = color;
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::setThicknessRatio(double ratio)
{
    m_thicknessRatio = ratio;
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::setClockwiseProgress(bool clockwise)
{
    m_clockwiseProgress = clockwise;
    setNeedsDisplay();
}

void VIRLOCircularProgressLayer::paint(QPainter& painter)
{
    drawInContext(painter, bounds());
}

void VIRLOCircularProgressLayer::drawInContext(QPainter& context, const QRectF& bounds) const
{
    const QPointF center = bounds.center();
    const double radius = std::min(bounds.width(), bounds.height()) * 0.5;
    const QRectF circle(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius);
    // A countdown from 0 divides by zero: NaN is drawn as an empty ring.
    const double share = std::isnan(presentedProgress()) ? 0 : std::min(presentedProgress(), fullest);

    context.save();
    context.setPen(Qt::NoPen);
    context.setBrush(m_trackTintColor);
    context.drawEllipse(circle);
    if (share > 0) {
        QPainterPath slice(center);
        // Qt's angles grow counterclockwise.
        slice.arcTo(circle, 90, (m_clockwiseProgress ? -360 : 360) * share);
        slice.closeSubpath();
        context.setBrush(m_progressTintColor);
        context.drawPath(slice);
    }
    context.setCompositionMode(QPainter::CompositionMode_Clear);
    const double inner = radius * (1 - m_thicknessRatio);
    context.setBrush(Qt::black);
    context.drawEllipse(center, inner, inner);
    context.restore();
}
