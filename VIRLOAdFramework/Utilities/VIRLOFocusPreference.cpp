#include "VIRLOFocusPreference.h"

#include "View.h"

namespace
{
constexpr const char* preferenceKey = "VIRLO_focusPreference";
} // namespace

void VIRLOFocusPreference::VIRLO_markFocusPreference(virlo::View& view)
{
    view.setProperty(preferenceKey, true);
}

void VIRLOFocusPreference::VIRLO_removeFocusPreference(virlo::View& view)
{
    view.setProperty(preferenceKey, false);
}

bool VIRLOFocusPreference::VIRLO_focusPreference(const virlo::View& view)
{
    return view.property(preferenceKey).toBool();
}
