#pragma once

#include "Animation.h"
#include "PaintedView.h"

#include <QColor>

#include <memory>

/// A ring, clear in the middle, of which a share from the top on is filled. It draws only when something
/// changed, and once a frame while an animation runs. Owned by the view that it fills; main thread.
class VIRLOCircularProgressLayer : public virlo::PaintedView
{
    Q_OBJECT

public:
    explicit VIRLOCircularProgressLayer(QQuickItem* superview = nullptr);
    ~VIRLOCircularProgressLayer() override;

    /// The share at rest, 0 to 1; anything else is drawn as the nearer end.
    [[nodiscard]] double progress() const noexcept { return m_progress; }

    void setProgress(double progress);

    /// What stands on the screen: the animation's share while one runs, else `progress`.
    [[nodiscard]] double presentedProgress() const noexcept { return m_animation ? m_animated : m_progress; }

    /// Shows the way from `from` to `to` in a second, in place of any way before, and then `progress` again.
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

    /// What `paint` does, for whoever draws elsewhere.
    void drawInContext(QPainter& context, const QRectF& bounds) const;

protected:
    void paint(QPainter& painter) override;

private:
    double m_progress = 0;
    double m_animated = 0;
    std::shared_ptr<virlo::Animation> m_animation;
    unsigned m_way = 0; ///< counts the ways begun and removed
    QColor m_trackTintColor = QColor::fromRgbF(0, 0, 0, 0.25F);
    QColor m_progressTintColor = Qt::white;
    double m_thicknessRatio = 0.15;
    bool m_clockwiseProgress = true;
};
