#pragma once

#include "PlayerAccessLog.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace virlo
{

/// Counts a video's bytes as they arrive from the network and measures their speed. Any thread.
class TransferMeter
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// A chunk has arrived and is handed on.
    void arrived(std::uint64_t bytes, Instant now);
    /// The chunk has been handed on, and the next one is waited for. Where that took long the player's buffer
    /// is full: from here on chunks arrive at the player's pace and say nothing about the network.
    void handedOn(Instant now);
    /// The player's buffer is empty: the network sets the pace again.
    void ranDry();
    void finished();

    [[nodiscard]] std::uint64_t bytes() const;
    [[nodiscard]] bool isFinished() const;
    /// Whether a full buffer holds the transfer up.
    [[nodiscard]] bool isThrottled() const;
    /// What arrived since the last call; nothing where nothing did.
    [[nodiscard]] std::optional<PlayerAccessLogEvent> nextEvent();

private:
    mutable std::mutex m_mutex;
    std::optional<Instant> m_arrival;
    std::optional<Instant> m_wait;
    std::uint64_t m_bytes = 0;
    std::uint64_t m_logged = 0;
    std::uint64_t m_measuredBytes = 0;
    std::chrono::nanoseconds m_measuredTime{0};
    double m_bitrate = 0;
    bool m_throttled = false;
    bool m_finished = false;
};

} // namespace virlo
