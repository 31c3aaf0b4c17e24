#pragma once

#include "PlayerTimeObservers.h"
#include "QueuePlayer.h"

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace virlo
{

/// What a QueuePlayer does, apart from it so that callbacks under way may outlive it. Wishes and facts are
/// noted on whatever thread they come from; a step on the main loop draws the conclusions and then tells the
/// observers, in order and without the lock.
class PlayerQueue : public std::enable_shared_from_this<PlayerQueue>
{
public:
    using Items = QueuePlayer::Items;

    explicit PlayerQueue(Items items);

    /// Asks for a step.
    void schedule();
    void close();

    void setRate(double rate);
    void setMuted(bool muted);
    void remove(std::size_t count);
    void preroll(std::function<void(bool)> completion);
    void cancelPendingPrerolls();

    [[nodiscard]] std::shared_ptr<PlayerItem> currentItem() const;
    [[nodiscard]] std::shared_ptr<const Items> items() const;
    [[nodiscard]] double rate() const;
    [[nodiscard]] bool isMuted() const;
    [[nodiscard]] std::shared_ptr<MediaPlayback> playbackOf(const PlayerItem& item) const;

    [[nodiscard]] std::shared_ptr<void> addObserver(std::string keyPath, QueuePlayer::Observer observer);
    [[nodiscard]] std::shared_ptr<void> addTimeObserver(Seconds interval, std::shared_ptr<SerialQueue> queue,
                                                        PlayerTimeObservers::Block block);
    void removeTimeObserver(const std::shared_ptr<void>& token);
    [[nodiscard]] std::shared_ptr<void> addFrameObserver(std::function<void()> arrived);

private:
    using Playback = std::shared_ptr<MediaPlayback>;
    using Event = std::function<void()>;

    struct KeyPathObserver {
        std::string keyPath;
        QueuePlayer::Observer observer;
    };

    struct Preroll {
        std::function<void(bool)> completion;
        std::shared_ptr<PlayerItem> item;
    };

    void step();
    // Under `m_mutex`
    void conclude();
    void load(PlayerItem& item);
    void announce(const std::shared_ptr<PlayerItem>& item, const PlaybackFacts& facts);
    void leave();
    void drive(const PlaybackFacts& facts);
    void answerPrerolls(const PlaybackFacts* facts);
    void noteKeepUp(const std::shared_ptr<PlayerItem>& item, std::optional<bool> keepUp);
    void noteChange(const char* keyPath, QueuePlayer::Value before, QueuePlayer::Value now);
    void notify(const char* name, const std::shared_ptr<PlayerItem>& item);
    void setRateLocked(double rate);
    // Without
    void tell(const std::string& keyPath, const QueuePlayer::Change& change);
    void frameArrived();
    void tellFrame();

    mutable std::mutex m_mutex;
    std::shared_ptr<const Items> m_madeWith;
    std::deque<std::shared_ptr<PlayerItem>> m_items;
    double m_rate = 0;
    bool m_muted = false;
    bool m_closed = false;
    std::optional<bool> m_keepUp; ///< as last told
    std::weak_ptr<PlayerItem> m_keepUpItem;
    std::vector<Event> m_events;
    std::vector<Playback> m_released; ///< let go of without the lock
    std::vector<Preroll> m_prerolls;
    PlayerTimeObservers m_timeObservers;
    std::vector<std::weak_ptr<KeyPathObserver>> m_observers;
    std::vector<std::weak_ptr<std::function<void()>>> m_frameObservers;
    std::atomic<bool> m_scheduled = false;
    std::atomic<bool> m_frameScheduled = false;
};

} // namespace virlo
