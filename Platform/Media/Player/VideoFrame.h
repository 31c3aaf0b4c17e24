#pragma once

#include <cstddef>
#include <memory>

namespace virlo
{

/// A decoded picture in the memory in which it was decoded: 32 bits a pixel in the byte order of the machine,
/// the uppermost eight bits set, no transparency. A value, shared by pointer, read on any thread.
struct VideoFrame {
    const unsigned char* bits = nullptr; ///< valid while `memory` is held
    int width = 0;
    int height = 0;
    std::ptrdiff_t bytesPerLine = 0;
    double aspectRatio = 1; ///< of the shown picture, width by height, whatever shape its pixels have
    std::shared_ptr<const void> memory;
};

/// What became of a clip's pictures so far.
struct VideoFrameCounts {
    long arrived = 0; ///< came to be shown, in time
    long late = 0;    ///< thrown away unseen, since they came too late to be shown
    long unseen = 0;  ///< replaced by the next before anybody took them
};

} // namespace virlo
