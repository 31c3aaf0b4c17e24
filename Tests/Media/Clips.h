#pragma once

#include <string>

namespace virlo::test
{

/// How a clip is made. Its frames are noise, which makes a large file, unless `pattern` names another of
/// GStreamer's test patterns.
struct Clip {
    double seconds = 2;
    int width = 160;
    int height = 90;
    int framesPerSecond = 30;
    std::string pattern = "snow";
    bool hasFrames = true;
    bool sound = true;
    bool webm = false;
    int kilobitsPerSecond = 400;
    std::string colorimetry = {}; ///< "bt601", "bt709", or GStreamer's choice for the size
};

/// Encodes the clip into `path`; a failure fails the test. Clips of the same kind are encoded once in a
/// program.
void writeClip(const std::string& path, const Clip& clip);
/// The clip's bytes.
[[nodiscard]] std::string clipBytes(const Clip& clip);

} // namespace virlo::test
