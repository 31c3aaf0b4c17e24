#include "VIRLOFrameworkBundle.h"

#include "VIRLOConstans.h"

using virlo::Bundle;

Bundle VIRLOFrameworkBundle::bundle()
{
    return Bundle::withFacts(VIRLOAdFrameworkBundleIdentifier, VIRLOAdFrameworkName, VIRLOAdFrameworkVersion);
}
