#include "VIRLOFormTextField.h"

#include "VIRLOFormShadow.h"

VIRLOFormTextField::VIRLOFormTextField(QQuickItem* superview) : TextField(superview) {}

void VIRLOFormTextField::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    TextField::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    VIRLOFormShadow::follow(*this, context, coordinator);
}
