#include "MediaModule.h"
#include "VIRLOAdStoryboardScreens.h"

/// The shared library starts when it is loaded, before the host can make its application object or ask for an
/// ad: hosts call nothing. Programs that link the screens statically call the same function themselves.
[[gnu::constructor]] static void startLibrary()
{
    virlo::MediaEngine::setMaker(&virlo::MediaModule::makeEngine);
    VIRLOAdStoryboardScreens::start();
}
