#pragma once

#include "MediaEngine.h"

#include <string>

namespace virlo
{

/// The engine as a module of its own beside the library, loaded with a process's first video: a host that
/// shows no video spends neither memory nor time on GStreamer, and does not need it on its device. Where the
/// module or what it needs is missing, a line in the log says so and every video fails. It stays loaded.
class MediaModule
{
public:
    /// The module's path, relative to the folder of the library.
    static constexpr const char* path = "virloadframework/media.so";

    using Maker = MediaEngine*(const char* version);
    static constexpr const char* makerName = "virloMakeMediaEngine";

    /// Never null. Reads the disk.
    [[nodiscard]] static MediaEngine* makeEngine();
};

} // namespace virlo
