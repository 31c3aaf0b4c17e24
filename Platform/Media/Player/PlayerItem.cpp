#include "PlayerItem.h"

#include <utility>

namespace virlo
{

std::shared_ptr<PlayerItem> PlayerItem::playerItemWithURL(const URL& url)
{
    const std::string scheme = url.scheme();
    if ((scheme != "http" && scheme != "https") || url.host().empty())
        return nullptr;
    return std::shared_ptr<PlayerItem>(new PlayerItem(url));
}

PlayerItem::Status PlayerItem::status() const
{
    switch (facts().phase) {
    case PlaybackFacts::Phase::Loading:
        return Status::Unknown;
    case PlaybackFacts::Phase::Failed:
        return Status::Failed;
    default:
        return Status::ReadyToPlay;
    }
}

OptionalError PlayerItem::error() const
{
    return facts().error;
}

bool PlayerItem::isPlaybackLikelyToKeepUp() const
{
    return facts().likelyToKeepUp;
}

Seconds PlayerItem::currentTime() const
{
    const std::lock_guard lock(m_mutex);
    return m_playback ? m_playback->currentTime() : m_lastTime;
}

std::optional<Seconds> PlayerItem::duration() const
{
    return facts().duration;
}

PlayerAccessLog PlayerItem::accessLog() const
{
    const std::lock_guard lock(m_mutex);
    return m_accessLog;
}

VideoFrameCounts PlayerItem::videoFrameCounts() const
{
    const std::lock_guard lock(m_mutex);
    return m_playback ? m_playback->frameCounts() : m_lastCounts;
}

bool PlayerItem::isLoaded() const
{
    const std::lock_guard lock(m_mutex);
    return m_loaded;
}

void PlayerItem::setPlayback(std::shared_ptr<MediaPlayback> playback)
{
    const std::lock_guard lock(m_mutex);
    m_playback = std::move(playback);
    m_loaded = true;
}

std::shared_ptr<MediaPlayback> PlayerItem::playback() const
{
    const std::lock_guard lock(m_mutex);
    return m_playback;
}

PlaybackFacts PlayerItem::facts() const
{
    const std::lock_guard lock(m_mutex);
    return m_playback ? m_playback->facts() : m_lastFacts;
}

std::shared_ptr<MediaPlayback> PlayerItem::retire()
{
    const std::lock_guard lock(m_mutex);
    m_loaded = true;
    if (m_playback) {
        m_lastFacts = m_playback->facts();
        m_lastTime = m_playback->currentTime();
        m_lastCounts = m_playback->frameCounts();
    }
    return std::exchange(m_playback, nullptr);
}

void PlayerItem::addToAccessLog(const PlayerAccessLogEvent& event)
{
    const std::lock_guard lock(m_mutex);
    m_accessLog.push_back(event);
}

std::string describe(const PlayerItem& item)
{
    return "<PlayerItem " + item.url().absoluteString() + ">";
}

} // namespace virlo
