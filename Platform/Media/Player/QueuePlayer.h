#pragma once

#include "PlayerItem.h"
#include "PlayerTimeObservers.h"
#include "SerialQueue.h"

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace virlo
{

/// Plays items one after another without a gap: the first is loaded at once, each next one while the one
/// before plays. Shown by a PlayerLayerView. Made, called and released on any thread; nothing here waits for
/// network, disk, decoder or sound device. When the last reference is released everything ends at once: no
/// sound, no frame, no callback (except one running on another thread); teardown runs elsewhere.
///
/// An item leaves the queue only while the rate is not 0: at its end, and when it fails. An item that fails
/// at rate 0 stays current until `play`. So each played item ends in `didPlayToEndTimeNotification` or
/// `failedToPlayToEndTimeNotification`, whatever its server does, and then `currentItem` changes.
class QueuePlayer : public std::enable_shared_from_this<QueuePlayer>
{
public:
    using Items = std::vector<std::shared_ptr<PlayerItem>>;

    /// What can be observed.
    static constexpr const char* currentItemKeyPath = "currentItem";
    static constexpr const char* mutedKeyPath = "muted";
    static constexpr const char* rateKeyPath = "rate";
    static constexpr const char* playbackLikelyToKeepUpKeyPath = "currentItem.playbackLikelyToKeepUp";

    /// An item, or nothing where there is no current one; a flag; a rate.
    using Value = std::variant<std::monostate, std::shared_ptr<PlayerItem>, bool, double>;

    struct Change {
        Value oldValue;
        Value newValue;
    };

    using Observer = std::function<void(const Change&)>;
    using TimeObserver = PlayerTimeObservers::Block;

    /// Null items are left out.
    [[nodiscard]] static std::shared_ptr<QueuePlayer> queuePlayerWithItems(const Items& items);
    QueuePlayer(const QueuePlayer&) = delete;
    QueuePlayer& operator=(const QueuePlayer&) = delete;

    // Each takes effect in the next turn of the main loop
    void play() { setRate(1); }

    void pause() { setRate(0); }

    /// 0 pauses, anything else plays at normal speed and reads back as 1.
    void setRate(double rate);
    void setMuted(bool muted);

    /// Null when the queue has run out.
    [[nodiscard]] std::shared_ptr<PlayerItem> currentItem() const;
    /// The current item and those after it. Until the first one leaves it is the list that the player was
    /// made with, which the player keeps for its life; after that a fresh one.
    [[nodiscard]] std::shared_ptr<const Items> items() const;
    /// The requested rate: it stays 1 during a stall, after which the item continues by itself; it becomes 0
    /// when the queue runs out.
    [[nodiscard]] double rate() const;
    [[nodiscard]] bool isMuted() const;
    /// Of the current item; 0 without one.
    [[nodiscard]] Seconds currentTime() const;

    /// Calls `observer` on the main loop at each change of the value, in the order of the changes, with the
    /// values before and after; setting the same value again is no change. Ends with the token: once that was
    /// released on the main thread it is not called any more.
    ///
    /// "currentItem": an item's end, its failure, and nothing when the queue runs out (before "rate").
    /// "currentItem.playbackLikelyToKeepUp": a flag, or nothing where there is no current item; false at most
    /// half a second after the frame stopped for want of data.
    [[nodiscard]] std::shared_ptr<void> addObserverForKeyPath(const std::string& keyPath, Observer observer);

    /// Calls `block` on `queue` (null: the main loop) with an item and its time: when the item starts to play
    /// (0), at each multiple of `interval` that its time passes, and at its end (its duration) before it
    /// leaves. Calls are never skipped or early, and in order, so a late one may name an item that has left.
    /// The queue keeps the block until it is removed.
    [[nodiscard]] std::shared_ptr<void>
    addPeriodicTimeObserver(Seconds interval, std::shared_ptr<SerialQueue> queue, TimeObserver block);
    /// A call that has begun on the queue continues; none begins after this.
    void removeTimeObserver(const std::shared_ptr<void>& token);

    /// Calls `arrived` on the main loop when there is a newer frame. Ends with the token, as above.
    [[nodiscard]] std::shared_ptr<void> addFrameObserver(std::function<void()> arrived);
    /// The current item's newest frame; null before its first.
    [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame();

private:
    using Playback = std::shared_ptr<MediaPlayback>;
    using Event = std::function<void()>;

    struct KeyPathObserver {
        std::string keyPath;
        Observer observer;
    };

    explicit QueuePlayer(Items items);

    void schedule();
    void step();
    void close();
    // Under `m_mutex`
    void updateItems();
    void load(PlayerItem& item);
    void announce(const std::shared_ptr<PlayerItem>& item, const PlaybackFacts& facts);
    void removeFirstItem();
    void updatePlayback(const PlaybackFacts& facts);
    void noteKeepUp(const std::shared_ptr<PlayerItem>& item, std::optional<bool> keepUp);
    void noteChange(const char* keyPath, Value before, Value now);
    void noteNotification(const char* name, const std::shared_ptr<PlayerItem>& item);
    void setRateLocked(double rate);
    // Without
    void callObservers(const std::string& keyPath, const Change& change);
    void frameArrived();
    void callFrameObservers();

    mutable std::mutex m_mutex;
    const std::shared_ptr<const Items> m_initialItems;
    std::deque<std::shared_ptr<PlayerItem>> m_items;
    double m_rate = 0;
    bool m_muted = false;
    bool m_closed = false;
    std::optional<bool> m_keepUp; ///< as last announced
    std::weak_ptr<PlayerItem> m_keepUpItem;
    std::vector<Event> m_events;
    std::vector<Playback> m_released; ///< destroyed without the lock
    PlayerTimeObservers m_timeObservers;
    std::vector<std::weak_ptr<KeyPathObserver>> m_observers;
    std::vector<std::weak_ptr<std::function<void()>>> m_frameObservers;
    std::atomic<bool> m_scheduled = false;
    std::atomic<bool> m_frameScheduled = false;
};

} // namespace virlo
