#pragma once

#include "Button.h"

/// A button that lifts itself while it is pressed. What it looked like before is kept at every highlight,
/// also at a second one in a row: that one keeps the lifted look. Main thread.
class VIRLOButton : public virlo::Button
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit VIRLOButton(QQuickItem* superview = nullptr);

    void setHighlighted(bool highlighted) override;

    /// The look before the last highlight.
    [[nodiscard]] QPointF normalShadowOffset() const noexcept { return m_normalShadowOffset; }

    [[nodiscard]] double normalShadowRadius() const noexcept { return m_normalShadowRadius; }

    [[nodiscard]] const virlo::AffineTransform& normalTransform() const noexcept { return m_normalTransform; }

private:
    QPointF m_normalShadowOffset;
    double m_normalShadowRadius = 0;
    virlo::AffineTransform m_normalTransform;
};
