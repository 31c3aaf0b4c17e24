#pragma once

namespace virlo
{
class View;
}

/// Marks the view that should get the focus first. Main thread.
namespace VIRLOFocusPreference
{
void VIRLO_markFocusPreference(virlo::View& view);
void VIRLO_removeFocusPreference(virlo::View& view);
/// False for a view that was never marked.
[[nodiscard]] bool VIRLO_focusPreference(const virlo::View& view);
} // namespace VIRLOFocusPreference
