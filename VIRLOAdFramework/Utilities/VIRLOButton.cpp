#include "VIRLOButton.h"

VIRLOButton::VIRLOButton(QQuickItem* superview) : Button(superview) {}

void VIRLOButton::setHighlighted(bool highlighted)
{
    Button::setHighlighted(highlighted);
    if (!highlighted) {
        setShadowOffset(m_normalShadowOffset);
        setShadowRadius(m_normalShadowRadius);
        setTransform(m_normalTransform);
        return;
    }
    m_normalShadowOffset = shadowOffset();
    m_normalShadowRadius = shadowRadius();
    m_normalTransform = transform();
    setShadowOffset({0, 5.0});
    setShadowRadius(5.0);
    setTransform(virlo::AffineTransform::scale(1.02F, 1.02F));
}
