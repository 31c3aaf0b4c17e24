#pragma once

#include <cstddef>
#include <memory>

namespace virlo
{

/// A decoded frame in the memory in which it was decoded: 32 bits a pixel in the machine's byte order, the
/// uppermost eight bits set, no transparency. A value, shared by pointer, read on any thread.
struct VideoFrame {
    const unsigned char* bits = nullptr; ///< valid while `memory` is held
    int width = 0;
    int height = 0;
    std::ptrdiff_t bytesPerLine = 0;
    double aspectRatio = 1; ///< as shown, width by height, whatever shape its pixels have
    std::shared_ptr<const void> memory;
};

/// What became of a video's frames so far.
struct VideoFrameCounts {
    long arrived = 0; ///< in time to be shown
    long late = 0;    ///< dropped because they were too late
    long unseen = 0;  ///< replaced by the next one before they were taken
};

} // namespace virlo
