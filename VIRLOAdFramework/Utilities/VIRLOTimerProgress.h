#pragma once

#include "View.h"

#include <QColor>

class VIRLOCircularProgressLayer;

namespace virlo
{
class Label;
}

/// A ring with a number of seconds in its middle, set by its owner about once a second. Main thread.
class VIRLOTimerProgress : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor trackTintColor READ trackTintColor WRITE setTrackTintColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(
        QColor progressTintColor READ progressTintColor WRITE setProgressTintColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double thicknessRatio READ thicknessRatio WRITE setThicknessRatio NOTIFY styleChanged FINAL)
    Q_PROPERTY(
        bool clockwiseProgress READ clockwiseProgress WRITE setClockwiseProgress NOTIFY styleChanged FINAL)

public:
    explicit VIRLOTimerProgress(QQuickItem* superview = nullptr);

    [[nodiscard]] QColor trackTintColor() const;
    void setTrackTintColor(const QColor& color);
    [[nodiscard]] QColor progressTintColor() const; ///< also the number's
    void setProgressTintColor(const QColor& color);
    [[nodiscard]] double thicknessRatio() const;
    void setThicknessRatio(double ratio);
    [[nodiscard]] bool clockwiseProgress() const;
    void setClockwiseProgress(bool clockwise);

    /// Seconds. Setting it fills the ring and shows the number; `timerValue` stays.
    [[nodiscard]] double initialTimerValue() const noexcept { return m_initialTimerValue; }

    void setInitialTimerValue(double seconds);

    [[nodiscard]] double timerValue() const noexcept { return m_timerValue; }

    /// Animates the ring from the old value's share to the new one's in one second.
    void setTimerValue(double seconds);

    [[nodiscard]] const VIRLOCircularProgressLayer& layer() const noexcept { return *m_layer; }

    [[nodiscard]] const virlo::Label& timerValueLabel() const noexcept { return *m_timerValueLabel; }

signals:
    void styleChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void showInLabel(double seconds);

    // Children of this item.
    VIRLOCircularProgressLayer* m_layer;
    virlo::Label* m_timerValueLabel;
    double m_initialTimerValue = 0;
    double m_timerValue = 0;
};
