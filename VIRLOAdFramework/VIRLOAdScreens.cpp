#include "VIRLOAdScreens.h"

#include <atomic>

namespace
{
constinit std::atomic<VIRLOAdScreens*> installedScreens{nullptr};
} // namespace

void VIRLOAdScreens::install(VIRLOAdScreens* screens)
{
    installedScreens = screens;
}

VIRLOAdScreens* VIRLOAdScreens::installed()
{
    return installedScreens;
}
