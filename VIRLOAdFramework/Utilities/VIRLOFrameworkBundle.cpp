#include "VIRLOFrameworkBundle.h"

#include "VIRLOConstans.h"

using virlo::Bundle;

Bundle VIRLOFrameworkBundle::bundle()
{
    if (const auto registered = Bundle::bundleWithIdentifier(VIRLOAdFrameworkBundleIdentifier))
        return *registered;
    Bundle::registerBundle(Bundle({{"CFBundleName", VIRLOAdFrameworkName},
                                   {"CFBundleIdentifier", VIRLOAdFrameworkBundleIdentifier},
                                   {"CFBundleShortVersionString", VIRLOAdFrameworkVersion}}));
    return Bundle::bundleWithIdentifier(VIRLOAdFrameworkBundleIdentifier).value_or(Bundle());
}
