#include "GstMediaEngine.h"
#include "MediaModule.h"

#include "Export.h"

#include <string_view>

/// The entry point that `MediaModule` looks up. Null where the library is not the one that this was built
/// with: they share classes.
extern "C" VIRLO_EXPORT virlo::MediaEngine* virloMakeMediaEngine(const char* version)
{
    return std::string_view(version) == VIRLO_VERSION ? new virlo::GstMediaEngine : nullptr;
}
