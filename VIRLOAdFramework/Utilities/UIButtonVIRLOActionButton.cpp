#include "UIButtonVIRLOActionButton.h"

#include "Button.h"
#include "Convert.h"
#include "VIRLOActionButton.h"

void UIButtonVIRLOActionButton::applyPropertiesFromModel(virlo::Button& button,
                                                         const VIRLOActionButton& model)
{
    if (model.text())
        button.setTitle(virlo::toQString(*model.text()));
    button.setTitleColor(virlo::toQColor(model.textColor()));
    button.setBackgroundColor(virlo::toQColor(model.backgroundColor()));
}
