#pragma once

#include "PlayerAccessLog.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace virlo
{

/// Counts a clip's bytes as they come from the network and tells how fast they come. Fed by the thread that
/// reads, asked from any other.
class TransferMeter
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// A piece has come; the reader now hands it on.
    void arrived(std::uint64_t bytes, Instant now);
    /// The reader has handed its piece on and waits for the next. Where that took long, the player's buffer
    /// is full: the next pieces come at the player's pace out of the system's buffers and say nothing about
    /// the network.
    void handedOn(Instant now);
    /// The player has run dry: the network sets the pace again.
    void ranDry();
    void finished();

    [[nodiscard]] std::uint64_t bytes() const;
    [[nodiscard]] bool isFinished() const;
    /// Whether the reader is being held up by a full buffer.
    [[nodiscard]] bool isThrottled() const;
    /// What has come since the last call; nothing where nothing has.
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
