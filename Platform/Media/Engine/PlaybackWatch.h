#pragma once

#include "Clock.h"

#include <chrono>
#include <cstdint>

namespace virlo
{

/// Judges from looks at a playback, taken every `interval` or so while something is waited for, whether it
/// still moves. One thread.
class PlaybackWatch
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::milliseconds interval{100};
    /// A picture that stands this long where it should move is a stall.
    static constexpr std::chrono::milliseconds stall{300};
    /// So long nothing may come and nothing move before the clip is given up.
    static constexpr std::chrono::seconds patience{15};
    /// The same for the first picture of a clip that is all here.
    static constexpr std::chrono::seconds patienceOnceRead{5};

    struct Look {
        Instant at;
        Seconds position{0};
        std::uint64_t bytes = 0;   ///< read so far
        bool shouldMove = false;   ///< the clip plays
        bool isAwaited = false;    ///< the clip plays, or waits for data in order to play
        bool isReadInVain = false; ///< all of the clip is here, and still nothing stands
    };

    enum class Verdict { Fine, Stalled, GivenUp };

    [[nodiscard]] Verdict judge(const Look& look);

private:
    Look m_last;
    Instant m_moved;    ///< the position last changed, or was not meant to
    Instant m_progress; ///< anything last changed, or was not awaited
};

} // namespace virlo
