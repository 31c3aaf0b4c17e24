#pragma once

#include "MediaEngine.h"

#include <string>

namespace virlo
{

/// The engine as a module of its own beside the library, opened with a process's first clip: a host that
/// shows no video pays neither memory nor time for GStreamer, and needs none on its device. Where the module
/// or what it needs is missing, a line in the log says so and every clip fails. It stays open.
class MediaModule
{
public:
    /// Where the module lies, from the folder of the library.
    static constexpr const char* path = "virloadframework/media.so";

    using Maker = MediaEngine*(const char* version);
    static constexpr const char* makerName = "virloMakeMediaEngine";

    /// Never null. Reads the disk.
    [[nodiscard]] static MediaEngine* makeEngine();
};

} // namespace virlo
