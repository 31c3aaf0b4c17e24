#pragma once

#include "Animation.h"
#include "PaintedView.h"

#include <QColor>

#include <memory>

/// A ring of which a share is filled, beginning at the top. It is drawn only when something changed, at most
/// once a frame while an animation runs. Owned by the view that it fills; main thread.
class VIRLOCircularProgressLayer : public virlo::PaintedView
{
    Q_OBJECT

public:
    explicit VIRLOCircularProgressLayer(QQuickItem* superview = nullptr);
    ~VIRLOCircularProgressLayer() override;

    /// The filled share without an animation, 0 to 1; other values are drawn as the nearer end.
    [[nodiscard]] double progress() const noexcept { return m_progress; }

    void setProgress(double progress);

    /// The share that is shown: the animation's while one runs, else `progress`.
    [[nodiscard]] double presentedProgress() const noexcept { return m_animation ? m_animated : m_progress; }

    /// Animates from `from` to `to` in one second, replacing any other animation, and then shows `progress`
    /// again.
    void addProgressAnimation(double from, double to);
    void removeProgressAnimation();

    [[nodiscard]] QColor trackTintColor() const { return m_trackTintColor; }

    void setTrackTintColor(const QColor& color);

    [[nodiscard]] QColor progressTintColor() const { return m_progressTintColor; }

    void setProgressTintColor(const QColor& color);

    /// The ring's thickness as a share of its radius.
    [[nodiscard]] double thicknessRatio() const noexcept { return m_thicknessRatio; }

    void setThicknessRatio(double ratio);

    [[nodiscard]] bool clockwiseProgress() const noexcept { return m_clockwiseProgress; }

    void setClockwiseProgress(bool clockwise);

    /// Draws the ring into `bounds`.
    void drawInContext(QPainter& context, const QRectF& bounds) const;

protected:
    void paint(QPainter& painter) override;

private:
    double m_progress = 0;
    double m_animated = 0;
    std::shared_ptr<virlo::Animation> m_animation;
    unsigned m_generation = 0; ///< counts the animations begun and removed
    QColor m_trackTintColor = QColor::fromRgbF(0, 0, 0, 0.25F);
    QColor m_progressTintColor = Qt::white;
    double m_thicknessRatio = 0.15;
    bool m_clockwiseProgress = true;
};
