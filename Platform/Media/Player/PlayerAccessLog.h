#pragma once

#include <cstdint>
#include <vector>

namespace virlo
{

/// One section of a video's transfer. Bytes are those since the event before, so that the events add up to
/// what was received.
struct PlayerAccessLogEvent {
    std::uint64_t numberOfBytesTransferred = 0;
    /// Bits per second while the player waited for the network: time in which its buffer was full does not
    /// count. 0 where nothing could be measured yet.
    double observedBitrate = 0;
};

using PlayerAccessLog = std::vector<PlayerAccessLogEvent>;

} // namespace virlo
