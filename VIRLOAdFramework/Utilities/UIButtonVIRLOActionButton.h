#pragma once

class VIRLOActionButton;

namespace virlo
{
class Button;
}

/// The look of a platform button after an ad's description of it. Main thread.
namespace UIButtonVIRLOActionButton
{
/// Text as the title where there is one, and the two colours. Place and action are the screen's.
void applyPropertiesFromModel(virlo::Button& button, const VIRLOActionButton& model);
} // namespace UIButtonVIRLOActionButton
