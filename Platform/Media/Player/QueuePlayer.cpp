#include "QueuePlayer.h"

#include "MainLoop.h"
#include "NotificationCenter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace virlo
{

namespace
{

/// This long before the end of an item the next one is loaded at the latest, even while the item is still
/// being transferred.
constexpr Seconds preloadTime{10};

bool isOver(const PlaybackFacts& facts)
{
    return facts.phase == PlaybackFacts::Phase::Ended || facts.phase == PlaybackFacts::Phase::Failed;
}

QueuePlayer::Value valueOf(std::optional<bool> flag)
{
    return flag ? QueuePlayer::Value(*flag) : QueuePlayer::Value();
}

QueuePlayer::Value valueOf(const std::shared_ptr<PlayerItem>& item)
{
    return item ? QueuePlayer::Value(item) : QueuePlayer::Value();
}

} // namespace

std::shared_ptr<QueuePlayer> QueuePlayer::queuePlayerWithItems(const Items& items)
{
    Items present;
    std::copy_if(items.begin(), items.end(), std::back_inserter(present),
                 [](const auto& item) { return item != nullptr; });
    const std::shared_ptr<QueuePlayer> player(new QueuePlayer(std::move(present)));
    player->schedule();
    // The returned references only close it: a step or a frame that is being delivered keeps the object.
    return {player.get(), [player](QueuePlayer*) { player->close(); }};
}

QueuePlayer::QueuePlayer(Items items)
    : m_initialItems(std::make_shared<const Items>(std::move(items)))
    , m_items(m_initialItems->begin(), m_initialItems->end())
{
}

void QueuePlayer::close()
{
    std::vector<Playback> released;
    std::vector<Event> events;
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    for (const auto& item : m_items)
        released.push_back(item->retire());
    m_timeObservers.removeAll();
    events.swap(m_events);
}

void QueuePlayer::setRate(double rate)
{
    {
        const std::lock_guard lock(m_mutex);
        setRateLocked(rate == 0 ? 0 : 1);
    }
    schedule();
}

void QueuePlayer::setRateLocked(double rate)
{
    const double before = std::exchange(m_rate, rate);
    if (before != rate)
        noteChange(rateKeyPath, before, rate);
}

void QueuePlayer::setMuted(bool muted)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_muted, muted) == muted)
            return;
        noteChange(mutedKeyPath, !muted, muted);
        for (const auto& item : m_items) {
            if (const auto playback = item->playback())
                playback->setMuted(muted);
        }
    }
    schedule();
}

std::shared_ptr<PlayerItem> QueuePlayer::currentItem() const
{
    const std::lock_guard lock(m_mutex);
    return m_items.empty() ? nullptr : m_items.front();
}

std::shared_ptr<const QueuePlayer::Items> QueuePlayer::items() const
{
    const std::lock_guard lock(m_mutex);
    if (m_items.size() == m_initialItems->size())
        return m_initialItems;
    return std::make_shared<const Items>(m_items.begin(), m_items.end());
}

double QueuePlayer::rate() const
{
    const std::lock_guard lock(m_mutex);
    return m_rate;
}

bool QueuePlayer::isMuted() const
{
    const std::lock_guard lock(m_mutex);
    return m_muted;
}

Seconds QueuePlayer::currentTime() const
{
    const auto item = currentItem();
    return item ? item->currentTime() : Seconds(0);
}

std::shared_ptr<const VideoFrame> QueuePlayer::takeFrame()
{
    const auto item = currentItem();
    const auto playback = item ? item->playback() : nullptr;
    return playback ? playback->takeFrame() : nullptr;
}

// The step: requests and facts are noted on whatever thread they come from; it applies them on the main loop
// and then calls the observers, in order and without the lock

void QueuePlayer::schedule()
{
    if (m_scheduled.exchange(true))
        return;
    MainLoop::shared().post([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->step();
    });
}

void QueuePlayer::step()
{
    m_scheduled = false;
    std::vector<Playback> released;
    std::vector<Event> events;
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        updateItems();
        released.swap(m_released);
        events.swap(m_events);
    }
    released.clear();
    for (const Event& event : events) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_closed)
                return;
        }
        event();
    }
}

void QueuePlayer::updateItems()
{
    PlaybackFacts facts;
    while (!m_items.empty()) {
        const auto item = m_items.front();
        load(*item);
        facts = item->facts();
        announce(item, facts);
        if (m_rate == 0 || !isOver(facts))
            break;
        m_timeObservers.end(item, item->currentTime(), facts.phase == PlaybackFacts::Phase::Ended, m_events);
        if (facts.phase == PlaybackFacts::Phase::Ended)
            noteNotification(PlayerItem::didPlayToEndTimeNotification, item);
        removeFirstItem();
        if (m_items.empty())
            setRateLocked(0);
    }
    if (m_items.empty()) {
        noteKeepUp(nullptr, std::nullopt);
        return;
    }
    noteKeepUp(m_items.front(), facts.likelyToKeepUp);
    updatePlayback(facts);
}

void QueuePlayer::load(PlayerItem& item)
{
    if (item.isLoaded())
        return;
    const std::weak_ptr<QueuePlayer> weak = weak_from_this();
    item.setPlayback(MediaEngine::shared().playbackOfURL(item.url(), m_muted,
                                                         {[weak] {
                                                              if (const auto self = weak.lock())
                                                                  self->schedule();
                                                          },
                                                          [weak] {
                                                              if (const auto self = weak.lock())
                                                                  self->frameArrived();
                                                          }}));
}

void QueuePlayer::announce(const std::shared_ptr<PlayerItem>& item, const PlaybackFacts& facts)
{
    for (; item->m_announcedEvents < facts.accessLog.size(); ++item->m_announcedEvents) {
        m_events.emplace_back([item, event = facts.accessLog[item->m_announcedEvents]] {
            item->addToAccessLog(event);
            NotificationCenter::defaultCenter().post(PlayerItem::newAccessLogEntryNotification, item.get());
        });
    }
    if (facts.phase == PlaybackFacts::Phase::Failed && !std::exchange(item->m_failureAnnounced, true))
        noteNotification(PlayerItem::failedToPlayToEndTimeNotification, item);
}

void QueuePlayer::removeFirstItem()
{
    const auto item = m_items.front();
    m_released.push_back(item->retire());
    m_items.pop_front();
    noteChange(currentItemKeyPath, valueOf(item), valueOf(m_items.empty() ? nullptr : m_items.front()));
}

void QueuePlayer::noteKeepUp(const std::shared_ptr<PlayerItem>& item, std::optional<bool> keepUp)
{
    const bool isSameItem = m_keepUpItem.lock() == item;
    m_keepUpItem = item;
    const auto before = std::exchange(m_keepUp, keepUp);
    if (before == keepUp)
        return;
    if (isSameItem && keepUp == false && m_rate != 0)
        noteNotification(PlayerItem::playbackStalledNotification, item);
    noteChange(playbackLikelyToKeepUpKeyPath, valueOf(before), valueOf(keepUp));
}

void QueuePlayer::updatePlayback(const PlaybackFacts& facts)
{
    const auto& current = m_items.front();
    const Playback playback = current->playback();
    if (!playback)
        return;
    playback->setPlaying(m_rate != 0);
    const Seconds now = playback->currentTime();
    if (m_rate != 0 && facts.phase == PlaybackFacts::Phase::Ready)
        m_timeObservers.advance(current, now, m_events);
    if (const auto time = m_timeObservers.next())
        playback->notifyAt(*time);
    const bool endIsNear = facts.transferred || (facts.duration && now + preloadTime >= *facts.duration);
    if (m_items.size() < 2 || facts.phase == PlaybackFacts::Phase::Loading || !endIsNear)
        return;
    load(*m_items[1]);
    announce(m_items[1], m_items[1]->facts());
}

} // namespace virlo
