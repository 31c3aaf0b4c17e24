#pragma once

#include "Clock.h"
#include "PlaybackLimits.h"

#include <chrono>
#include <cstdint>

namespace virlo
{

/// Decides from samples of a playback, taken about every `interval` while it waits for something or plays,
/// whether it still moves. One thread.
class PlaybackMonitor
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::milliseconds interval{100};

    struct Sample {
        Instant at;
        Seconds position{0};
        std::uint64_t bytes = 0;     ///< received so far
        bool shouldMove = false;     ///< the video plays
        bool isWaitedFor = false;    ///< it plays, or waits for data in order to play
        bool isUnplayedFile = false; ///< the whole file has arrived, and still there is no frame
    };

    enum class Verdict { Fine, Stalled, TimedOut };

    explicit PlaybackMonitor(const PlaybackLimits& limits) : m_limits(limits) {}

    [[nodiscard]] Verdict update(const Sample& sample);

private:
    const PlaybackLimits m_limits;
    Sample m_last;
    Instant m_moved;    ///< the position last changed, or did not have to
    Instant m_progress; ///< anything last changed, or nothing was waited for
};

} // namespace virlo
