#pragma once

#include "Bundle.h"

namespace VIRLOFrameworkBundle
{

/// The library's own bundle, by `VIRLOAdFrameworkBundleIdentifier`: the one that a host has registered, else
/// one that says the library's name and version. Any thread.
[[nodiscard]] virlo::Bundle bundle();

} // namespace VIRLOFrameworkBundle
