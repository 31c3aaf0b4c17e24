#pragma once

#include <string>

namespace virlo::test
{

/// How a clip is made. Its pictures are noise of that size, so that its bytes are many, unless `pattern`
/// names another of GStreamer's.
struct Clip {
    double seconds = 2;
    int width = 160;
    int height = 90;
    int framesPerSecond = 30;
    std::string pattern = "snow";
    bool picture = true;
    bool sound = true;
    bool webm = false;
    int kilobitsPerSecond = 400;
    std::string colorimetry = {}; ///< "bt601", "bt709", or whatever GStreamer makes of the size
};

/// Encodes the clip into `path`; a failure fails the test. Clips of the same kind are encoded once in a
/// program.
void writeClip(const std::string& path, const Clip& clip);
/// The clip's bytes.
[[nodiscard]] std::string clipBytes(const Clip& clip);

} // namespace virlo::test
