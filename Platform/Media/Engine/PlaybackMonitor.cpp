#include "PlaybackMonitor.h"

namespace virlo
{

PlaybackMonitor::Verdict PlaybackMonitor::update(const Sample& sample)
{
    const bool hasMoved = sample.position != m_last.position;
    if (hasMoved || !sample.shouldMove || !m_last.shouldMove)
        m_moved = sample.at;
    if (hasMoved || !sample.isWaitedFor || !m_last.isWaitedFor || sample.bytes != m_last.bytes)
        m_progress = sample.at;
    m_last = sample;
    const auto timeout = sample.isUnplayedFile ? m_limits.timeoutOnceTransferred : m_limits.timeout;
    if (sample.at - m_progress >= timeout)
        return Verdict::TimedOut;
    return sample.at - m_moved >= m_limits.stall ? Verdict::Stalled : Verdict::Fine;
}

} // namespace virlo
