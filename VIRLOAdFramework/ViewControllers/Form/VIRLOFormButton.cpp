#include "VIRLOFormButton.h"

#include "VIRLOFormShadow.h"

VIRLOFormButton::VIRLOFormButton(QQuickItem* superview) : Button(superview) {}

void VIRLOFormButton::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    Button::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    VIRLOFormShadow::follow(*this, context, coordinator);
}
