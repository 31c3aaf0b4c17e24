#include "PlayerQueue.h"

#include "MainLoop.h"
#include "NotificationCenter.h"

#include <utility>

namespace virlo
{

namespace
{

/// So long before its end an item's successor is loaded at the latest, though its own transfer may still go
/// on.
constexpr Seconds headStart{10};

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

PlayerQueue::PlayerQueue(Items items)
    : m_madeWith(std::make_shared<const Items>(std::move(items)))
    , m_items(m_madeWith->begin(), m_madeWith->end())
{
}

void PlayerQueue::schedule()
{
    if (m_scheduled.exchange(true))
        return;
    MainLoop::shared().post([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->step();
    });
}

void PlayerQueue::close()
{
    std::vector<Playback> released;
    std::vector<Preroll> prerolls;
    std::vector<Event> events;
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    for (const auto& item : m_items)
        released.push_back(item->retire());
    m_timeObservers.removeAll();
    prerolls.swap(m_prerolls);
    events.swap(m_events);
}

void PlayerQueue::setRate(double rate)
{
    {
        const std::lock_guard lock(m_mutex);
        setRateLocked(rate == 0 ? 0 : 1);
    }
    schedule();
}

void PlayerQueue::setRateLocked(double rate)
{
    const double before = std::exchange(m_rate, rate);
    if (before != rate)
        noteChange(QueuePlayer::rateKeyPath, before, rate);
}

void PlayerQueue::setMuted(bool muted)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_muted, muted) == muted)
            return;
        noteChange(QueuePlayer::mutedKeyPath, !muted, muted);
        for (const auto& item : m_items) {
            if (const auto playback = item->playback())
                playback->setMuted(muted);
        }
    }
    schedule();
}

void PlayerQueue::remove(std::size_t count)
{
    {
        const std::lock_guard lock(m_mutex);
        while (count-- > 0 && !m_items.empty())
            leave();
    }
    schedule();
}

void PlayerQueue::preroll(std::function<void(bool)> completion)
{
    {
        const std::lock_guard lock(m_mutex);
        m_prerolls.push_back({std::move(completion), m_items.empty() ? nullptr : m_items.front()});
    }
    schedule();
}

void PlayerQueue::cancelPendingPrerolls()
{
    {
        const std::lock_guard lock(m_mutex);
        for (Preroll& preroll : std::exchange(m_prerolls, {}))
            m_events.emplace_back([completion = std::move(preroll.completion)] { completion(false); });
    }
    schedule();
}

std::shared_ptr<PlayerItem> PlayerQueue::currentItem() const
{
    const std::lock_guard lock(m_mutex);
    return m_items.empty() ? nullptr : m_items.front();
}

std::shared_ptr<const PlayerQueue::Items> PlayerQueue::items() const
{
    const std::lock_guard lock(m_mutex);
    if (m_items.size() == m_madeWith->size())
        return m_madeWith;
    return std::make_shared<const Items>(m_items.begin(), m_items.end());
}

double PlayerQueue::rate() const
{
    const std::lock_guard lock(m_mutex);
    return m_rate;
}

bool PlayerQueue::isMuted() const
{
    const std::lock_guard lock(m_mutex);
    return m_muted;
}

std::shared_ptr<MediaPlayback> PlayerQueue::playbackOf(const PlayerItem& item) const
{
    return item.playback();
}

// The step

void PlayerQueue::step()
{
    m_scheduled = false;
    std::vector<Playback> released;
    std::vector<Event> events;
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        conclude();
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

void PlayerQueue::conclude()
{
    PlaybackFacts facts;
    while (!m_items.empty()) {
        const auto item = m_items.front();
        load(*item);
        facts = item->facts();
        announce(item, facts);
        if (m_rate == 0 || !isOver(facts))
            break;
        if (facts.phase == PlaybackFacts::Phase::Ended)
            notify(PlayerItem::didPlayToEndTimeNotification, item);
        leave();
        if (m_items.empty())
            setRateLocked(0);
    }
    if (m_items.empty()) {
        noteKeepUp(nullptr, std::nullopt);
        answerPrerolls(nullptr);
        return;
    }
    noteKeepUp(m_items.front(), facts.likelyToKeepUp);
    answerPrerolls(&facts);
    drive(facts);
}

void PlayerQueue::load(PlayerItem& item)
{
    if (item.isLoaded())
        return;
    const std::weak_ptr<PlayerQueue> weak = weak_from_this();
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

void PlayerQueue::announce(const std::shared_ptr<PlayerItem>& item, const PlaybackFacts& facts)
{
    for (; item->m_announcedEvents < facts.accessLog.size(); ++item->m_announcedEvents) {
        m_events.emplace_back([item, event = facts.accessLog[item->m_announcedEvents]] {
            item->addToAccessLog(event);
            NotificationCenter::defaultCenter().post(PlayerItem::newAccessLogEntryNotification, item.get());
        });
    }
    if (facts.phase == PlaybackFacts::Phase::Failed && !std::exchange(item->m_failureAnnounced, true))
        notify(PlayerItem::failedToPlayToEndTimeNotification, item);
}

void PlayerQueue::leave()
{
    const auto item = m_items.front();
    m_released.push_back(item->retire());
    m_items.pop_front();
    m_timeObservers.restart();
    noteChange(QueuePlayer::currentItemKeyPath, valueOf(item),
               valueOf(m_items.empty() ? nullptr : m_items.front()));
}

void PlayerQueue::noteKeepUp(const std::shared_ptr<PlayerItem>& item, std::optional<bool> keepUp)
{
    const bool isSameItem = m_keepUpItem.lock() == item;
    m_keepUpItem = item;
    const auto before = std::exchange(m_keepUp, keepUp);
    if (before == keepUp)
        return;
    if (isSameItem && keepUp == false && m_rate != 0)
        notify(PlayerItem::playbackStalledNotification, item);
    noteChange(QueuePlayer::playbackLikelyToKeepUpKeyPath, valueOf(before), valueOf(keepUp));
}

void PlayerQueue::answerPrerolls(const PlaybackFacts* facts)
{
    for (auto preroll = m_prerolls.begin(); preroll != m_prerolls.end();) {
        const bool isGone = facts == nullptr || preroll->item != m_items.front() ||
                            facts->phase == PlaybackFacts::Phase::Failed;
        if (!isGone && !facts->likelyToKeepUp) {
            ++preroll;
            continue;
        }
        m_events.emplace_back([completion = std::move(preroll->completion), isGone] { completion(!isGone); });
        preroll = m_prerolls.erase(preroll);
    }
}

void PlayerQueue::drive(const PlaybackFacts& facts)
{
    const auto& current = m_items.front();
    const Playback playback = current->playback();
    if (!playback)
        return;
    playback->setPlaying(m_rate != 0);
    const Seconds now = playback->currentTime();
    m_timeObservers.tell(now);
    if (const auto mark = m_timeObservers.next())
        playback->notifyAt(*mark);
    const bool endNears = facts.transferred || (facts.duration && now + headStart >= *facts.duration);
    if (m_items.size() < 2 || facts.phase == PlaybackFacts::Phase::Loading || !endNears)
        return;
    load(*m_items[1]);
    announce(m_items[1], m_items[1]->facts());
}

} // namespace virlo
