#pragma once

#include "MediaEngine.h"

#include <gst/gst.h>

#include <string>

namespace virlo
{

/// What a pipeline's error message says, in the engine's terms.
struct GstReport {
    explicit GstReport(GstMessage& message);

    MediaEngine::ErrorCode code = MediaEngine::failed;
    std::string reason;
};

/// From a missing-plugin message: the caps, as text, that no decoder was found for; empty where the plugin is
/// of another kind.
[[nodiscard]] std::string undecodableCaps(GstMessage& message);

} // namespace virlo
