#include "VIRLOTimerButton.h"

#include "Animation.h"
#include "Convert.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "StringFormat.h"
#include "VIRLOCircularProgressLayer.h"

#include <QPointer>

#include <algorithm>

namespace
{
constexpr virlo::Seconds tick{1.0};
constexpr virlo::Seconds fadeDuration{1.0};
/// The image's side as a share of the button's.
constexpr double imageShare = 4.0 / 9.0;
} // namespace

VIRLOTimerButton::VIRLOTimerButton(QQuickItem* superview)
    : Control(superview)
    , m_layer(new VIRLOCircularProgressLayer(this))
    , m_timerValueLabel(new virlo::Label(this))
    , m_imageView(new virlo::ImageView(this))
{
    pinToEdges(*m_layer);
    pinToEdges(*m_timerValueLabel);
    m_timerValueLabel->setBold(true);
    m_timerValueLabel->setTextAlignment(Qt::AlignCenter);
    m_timerValueLabel->setTextColor(progressTintColor());
    m_imageView->setContentMode(virlo::ImageView::ContentMode::AspectFit);
    m_imageView->setAlpha(0);
}

VIRLOTimerButton::~VIRLOTimerButton() = default;

QColor VIRLOTimerButton::trackTintColor() const
{
    return m_layer->trackTintColor();
}

void VIRLOTimerButton::setTrackTintColor(const QColor& color)
{
    m_layer->setTrackTintColor(color);
    emit styleChanged();
}

QColor VIRLOTimerButton::progressTintColor() const
{
    return m_layer->progressTintColor();
}

void VIRLOTimerButton::setProgressTintColor(const QColor& color)
{
    m_layer->setProgressTintColor(color);
    m_timerValueLabel->setTextColor(color);
    emit styleChanged();
}

double VIRLOTimerButton::thicknessRatio() const
{
    return m_layer->thicknessRatio();
}

void VIRLOTimerButton::setThicknessRatio(double ratio)
{
    m_layer->setThicknessRatio(ratio);
    emit styleChanged();
}

bool VIRLOTimerButton::clockwiseProgress() const
{
    return m_layer->clockwiseProgress();
}

void VIRLOTimerButton::setClockwiseProgress(bool clockwise)
{
    m_layer->setClockwiseProgress(clockwise);
    emit styleChanged();
}

std::shared_ptr<const virlo::Image> VIRLOTimerButton::image() const
{
    return m_imageView->image();
}

void VIRLOTimerButton::setImage(std::shared_ptr<const virlo::Image> image)
{
    m_imageView->setImage(std::move(image));
}

void VIRLOTimerButton::setInitialTimerValue(double seconds)
{
    if (timerIsRunning())
        return;
    m_initialTimerValue = seconds;
    setTimerValue(seconds);
    setProgressAnimated(1.0, false);
}

void VIRLOTimerButton::setTimerValue(double seconds)
{
    m_timerValue = seconds;
    m_timerValueLabel->setText(virlo::toQString(virlo::format("%.f", seconds)));
}

void VIRLOTimerButton::start()
{
    setActive(false);
    m_fading = false;
    m_timerValueLabel->setAlpha(1);
    m_imageView->setAlpha(0);
    m_timer = virlo::Timer::repeating(tick, [button = QPointer(this)] {
        if (button)
            button->updateCountdown();
    });
}

void VIRLOTimerButton::updateCountdown()
{
    if (m_timerValue > 0) {
        setTimerValue(m_timerValue - 1);
        setProgressAnimated(m_timerValue / m_initialTimerValue, true);
        return;
    }
    // The timer runs until the fade has ended, so its next tick comes during the fade.
    if (m_fading)
        return;
    m_fading = true;
    virlo::Animation::animate(
        fadeDuration,
        [this] {
            m_timerValueLabel->setAlpha(0);
            m_imageView->setAlpha(1);
        },
        [button = QPointer(this)](bool) {
            if (button && button->m_fading)
                button->finish();
        });
}

void VIRLOTimerButton::finish()
{
    m_fading = false;
    if (m_timer)
        m_timer->invalidate();
    setActive(true);
}

void VIRLOTimerButton::setProgressAnimated(double progress, bool animated)
{
    m_layer->removeProgressAnimation();
    // The layer's own progress stays full while each second is animated: so the ring closes again around the
    // image when the countdown is over.
    if (animated)
        m_layer->addProgressAnimation(progress + 1 / m_initialTimerValue, progress);
    else
        m_layer->setProgress(progress);
}

bool VIRLOTimerButton::timerIsRunning() const
{
    return m_timer && m_timer->isValid();
}

void VIRLOTimerButton::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    focusabilityDidChange();
    emit activeChanged();
}

bool VIRLOTimerButton::canBecomeFocused() const
{
    return m_active;
}

void VIRLOTimerButton::pressesEnded(const std::vector<virlo::Press>& presses)
{
    setHighlighted(false);
    Control::pressesEnded(presses);
}

void VIRLOTimerButton::geometryChange(const QRectF& now, const QRectF& before)
{
    Control::geometryChange(now, before);
    m_timerValueLabel->setFontSize(now.height() / 3.0);
    const double side = std::min(now.width(), now.height()) * imageShare;
    m_imageView->setFrame({(now.width() - side) / 2, (now.height() - side) / 2, side, side});
}
