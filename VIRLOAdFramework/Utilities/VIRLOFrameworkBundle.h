#pragma once

#include "Bundle.h"

namespace VIRLOFrameworkBundle
{

/// The bundle registered under `VIRLOAdFrameworkBundleIdentifier`, by default one with the library's name and
/// version. Any thread.
[[nodiscard]] virlo::Bundle bundle();

} // namespace VIRLOFrameworkBundle
