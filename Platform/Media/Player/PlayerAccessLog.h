#pragma once

#include <cstdint>
#include <vector>

namespace virlo
{

/// One stretch of a clip's transfer. Bytes are those since the event before, so a clip's events add up to
/// what was read of it.
struct PlayerAccessLogEvent {
    std::uint64_t numberOfBytesTransferred = 0;
    /// Bits per second while the network was what the player waited for: time in which the player itself
    /// would take no more, its buffer full, does not count. 0 where nothing could be measured yet.
    double observedBitrate = 0;
};

using PlayerAccessLog = std::vector<PlayerAccessLogEvent>;

} // namespace virlo
