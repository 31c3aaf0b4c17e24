#pragma once

#include "Control.h"
#include "Timer.h"

#include <QColor>

#include <memory>

class VIRLOCircularProgressLayer;

namespace virlo
{
class Image;
class ImageView;
class Label;
} // namespace virlo

/// A ring that counts whole seconds down. At 0 it fades its number out and its image in, and only then can it
/// be focused and pressed. Once started it cannot be stopped or set again before its end. Main thread; the
/// timer is a repeating one on the main loop, which ends with the button.
class VIRLOTimerButton : public virlo::Control
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor trackTintColor READ trackTintColor WRITE setTrackTintColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(
        QColor progressTintColor READ progressTintColor WRITE setProgressTintColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double thicknessRatio READ thicknessRatio WRITE setThicknessRatio NOTIFY styleChanged FINAL)
    Q_PROPERTY(
        bool clockwiseProgress READ clockwiseProgress WRITE setClockwiseProgress NOTIFY styleChanged FINAL)
    Q_PROPERTY(bool active READ active NOTIFY activeChanged FINAL)

public:
    explicit VIRLOTimerButton(QQuickItem* superview = nullptr);
    ~VIRLOTimerButton() override;

    [[nodiscard]] QColor trackTintColor() const;
    void setTrackTintColor(const QColor& color);
    [[nodiscard]] QColor progressTintColor() const; ///< also the number's
    void setProgressTintColor(const QColor& color);
    [[nodiscard]] double thicknessRatio() const;
    void setThicknessRatio(double ratio);
    [[nodiscard]] bool clockwiseProgress() const;
    void setClockwiseProgress(bool clockwise);

    /// Shown when the countdown is over, fitted into the middle of the ring.
    [[nodiscard]] std::shared_ptr<const virlo::Image> image() const;
    void setImage(std::shared_ptr<const virlo::Image> image);

    /// Seconds. Setting it also sets `timerValue` and fills the ring; ignored while the timer runs.
    [[nodiscard]] double initialTimerValue() const noexcept { return m_initialTimerValue; }

    void setInitialTimerValue(double seconds);

    [[nodiscard]] double timerValue() const noexcept { return m_timerValue; }

    void setTimerValue(double seconds);

    void start();
    /// Called by the timer each second.
    void updateCountdown();
    void setProgressAnimated(double progress, bool animated);
    [[nodiscard]] bool timerIsRunning() const;

    /// True once the countdown is over.
    [[nodiscard]] bool active() const noexcept { return m_active; }

    [[nodiscard]] bool canBecomeFocused() const override;
    void pressesEnded(const std::vector<virlo::Press>& presses) override;

    [[nodiscard]] const VIRLOCircularProgressLayer& layer() const noexcept { return *m_layer; }

    [[nodiscard]] const virlo::Label& timerValueLabel() const noexcept { return *m_timerValueLabel; }

    [[nodiscard]] const virlo::ImageView& imageView() const noexcept { return *m_imageView; }

signals:
    void styleChanged();
    void activeChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void setActive(bool active);
    void finish();

    // Children of this item.
    VIRLOCircularProgressLayer* m_layer;
    virlo::Label* m_timerValueLabel;
    virlo::ImageView* m_imageView;
    std::shared_ptr<virlo::Timer> m_timer;
    double m_initialTimerValue = 0;
    double m_timerValue = 0;
    bool m_active = false;
    bool m_fading = false;
};
