#include "TransferMeter.h"

namespace virlo
{

namespace
{
using namespace std::chrono_literals;
constexpr auto longestHandover = 50ms;
/// A shorter time measures the scheduler rather than the network.
constexpr auto shortestMeasure = 1ms;
} // namespace

void TransferMeter::arrived(std::uint64_t bytes, Instant now)
{
    const std::lock_guard lock(m_mutex);
    m_bytes += bytes;
    if (m_wait && !m_throttled) {
        m_measuredBytes += bytes;
        m_measuredTime += now - *m_wait;
    }
    m_wait.reset();
    m_arrival = now;
}

void TransferMeter::handedOn(Instant now)
{
    const std::lock_guard lock(m_mutex);
    if (m_arrival && now - *m_arrival > longestHandover)
        m_throttled = true;
    m_arrival.reset();
    m_wait = now;
}

void TransferMeter::ranDry()
{
    const std::lock_guard lock(m_mutex);
    m_throttled = false;
}

void TransferMeter::finished()
{
    const std::lock_guard lock(m_mutex);
    m_finished = true;
}

std::uint64_t TransferMeter::bytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}

bool TransferMeter::isFinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_finished;
}

bool TransferMeter::isThrottled() const
{
    const std::lock_guard lock(m_mutex);
    return m_throttled;
}

std::optional<PlayerAccessLogEvent> TransferMeter::nextEvent()
{
    const std::lock_guard lock(m_mutex);
    if (m_bytes == m_logged)
        return std::nullopt;
    if (m_measuredTime >= shortestMeasure) {
        m_bitrate =
            static_cast<double>(m_measuredBytes) * 8 / std::chrono::duration<double>(m_measuredTime).count();
        m_measuredBytes = 0;
        m_measuredTime = {};
    }
    const PlayerAccessLogEvent event{m_bytes - m_logged, m_bitrate};
    m_logged = m_bytes;
    return event;
}

} // namespace virlo
