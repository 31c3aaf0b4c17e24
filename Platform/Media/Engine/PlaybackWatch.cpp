#include "PlaybackWatch.h"

namespace virlo
{

PlaybackWatch::Verdict PlaybackWatch::judge(const Look& look)
{
    const bool hasMoved = look.position != m_last.position;
    if (hasMoved || !look.shouldMove || !m_last.shouldMove)
        m_moved = look.at;
    if (hasMoved || !look.isAwaited || !m_last.isAwaited || look.bytes != m_last.bytes)
        m_progress = look.at;
    m_last = look;
    if (look.at - m_progress >= (look.isReadInVain ? patienceOnceRead : patience))
        return Verdict::GivenUp;
    return look.at - m_moved >= stall ? Verdict::Stalled : Verdict::Fine;
}

} // namespace virlo
