#pragma once

class VIRLOActionButton;

namespace virlo
{
class Button;
}

/// Applies an ad's description of a button to a platform button. Main thread.
namespace UIButtonVIRLOActionButton
{
/// The text as the title, where there is one, and the two colours. The screen sets position and action.
void applyPropertiesFromModel(virlo::Button& button, const VIRLOActionButton& model);
} // namespace UIButtonVIRLOActionButton
