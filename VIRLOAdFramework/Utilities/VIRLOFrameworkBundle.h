#pragma once

#include "Bundle.h"

namespace VIRLOFrameworkBundle
{

/// The library's own bundle: identifier `VIRLOAdFrameworkBundleIdentifier`, name and version. Any thread.
[[nodiscard]] virlo::Bundle bundle();

} // namespace VIRLOFrameworkBundle
