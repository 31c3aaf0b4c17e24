#pragma once

#include <chrono>

namespace virlo
{

/// How long a playback waits for what.
struct PlaybackLimits {
    /// A frame that does not move for this long while it should is a stall.
    std::chrono::milliseconds stall{300};
    /// Nothing arrived and nothing moved for this long: the item fails.
    std::chrono::milliseconds timeout{15'000};
    /// The same for the first frame of a video that has been transferred as a whole.
    std::chrono::milliseconds timeoutOnceTransferred{5'000};
    /// Without a byte for this long a transfer fails; longer than `timeout`, which normally acts first.
    std::chrono::milliseconds silence{20'000};
    /// Before the second attempt to resume a broken transfer; the third waits twice as long.
    std::chrono::milliseconds retryPause{1'000};
};

} // namespace virlo
