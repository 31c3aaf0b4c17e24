#include "VIRLOTimerProgress.h"

#include "Convert.h"
#include "Label.h"
#include "StringFormat.h"
#include "VIRLOCircularProgressLayer.h"

VIRLOTimerProgress::VIRLOTimerProgress(QQuickItem* superview)
    : View(superview)
    , m_layer(new VIRLOCircularProgressLayer(this))
    , m_timerValueLabel(new virlo::Label(this))
{
    pinToEdges(*m_layer);
    pinToEdges(*m_timerValueLabel);
    m_timerValueLabel->setBold(true);
    m_timerValueLabel->setTextAlignment(Qt::AlignCenter);
    m_timerValueLabel->setTextColor(progressTintColor());
}

QColor VIRLOTimerProgress::trackTintColor() const
{
    return m_layer->trackTintColor();
}

void VIRLOTimerProgress::setTrackTintColor(const QColor& color)
{
    m_layer->setTrackTintColor(color);
    emit styleChanged();
}

QColor VIRLOTimerProgress::progressTintColor() const
{
    return m_layer->progressTintColor();
}

void VIRLOTimerProgress::setProgressTintColor(const QColor& color)
{
    m_layer->setProgressTintColor(color);
    m_timerValueLabel->setTextColor(color);
    emit styleChanged();
}

double VIRLOTimerProgress::thicknessRatio() const
{
    return m_layer->thicknessRatio();
}

void VIRLOTimerProgress::setThicknessRatio(double ratio)
{
    m_layer->setThicknessRatio(ratio);
    emit styleChanged();
}

bool VIRLOTimerProgress::clockwiseProgress() const
{
    return m_layer->clockwiseProgress();
}

void VIRLOTimerProgress::setClockwiseProgress(bool clockwise)
{
    m_layer->setClockwiseProgress(clockwise);
    emit styleChanged();
}

void VIRLOTimerProgress::setInitialTimerValue(double seconds)
{
    m_initialTimerValue = seconds;
    showInLabel(seconds);
    m_layer->removeProgressAnimation();
    m_layer->setProgress(1.0);
}

void VIRLOTimerProgress::setTimerValue(double seconds)
{
    // The ring's own share is deliberately one value behind the animation's end; with a new value each second
    // it is never seen.
    m_layer->setProgress(m_timerValue / m_initialTimerValue);
    m_layer->addProgressAnimation(static_cast<float>(m_timerValue / m_initialTimerValue),
                                  static_cast<float>(seconds / m_initialTimerValue));
    m_timerValue = seconds;
    showInLabel(seconds);
}

void VIRLOTimerProgress::showInLabel(double seconds)
{
    m_timerValueLabel->setText(virlo::toQString(virlo::format("%.f", seconds)));
}

void VIRLOTimerProgress::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    m_timerValueLabel->setFontSize(now.height() / 3.0);
}
