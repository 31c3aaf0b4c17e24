#pragma once

#include "Button.h"

/// A button that is lifted while it is pressed. The normal appearance is saved at every highlight; a second
/// one in a row deliberately saves the lifted appearance as the normal one. Main thread.
class VIRLOButton : public virlo::Button
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit VIRLOButton(QQuickItem* superview = nullptr);

    void setHighlighted(bool highlighted) override;

    /// The appearance before the last highlight.
    [[nodiscard]] QPointF normalShadowOffset() const noexcept { return m_normalShadowOffset; }

    [[nodiscard]] double normalShadowRadius() const noexcept { return m_normalShadowRadius; }

    [[nodiscard]] const virlo::AffineTransform& normalTransform() const noexcept { return m_normalTransform; }

private:
    QPointF m_normalShadowOffset;
    double m_normalShadowRadius = 0;
    virlo::AffineTransform m_normalTransform;
};
