#pragma once

#include "PlayerItem.h"
#include "SerialQueue.h"

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace virlo
{

class PlayerQueue;

/// Plays items one after another without a gap: the first is loaded at once, each next one while the one
/// before plays. Shown by a PlayerLayerView. Made, asked, told and let go of on any thread; nothing here
/// waits for network, disk, decoder or sound device. With its last reference everything ends at once: no
/// sound, no picture, no callback (but one under way on another thread); what has to be torn down is torn
/// down elsewhere.
///
/// An item leaves the queue only while the rate is not 0: at its end, and when it fails. A failed one that is
/// met at rate 0 stays the current item until `play`. So each item that is played ends in
/// `didPlayToEndTimeNotification` or `failedToPlayToEndTimeNotification`, whatever its server does, and then
/// `currentItem` changes. When nothing comes and nothing moves for 15 seconds an item counts as failed.
class QueuePlayer
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

    /// Null items are left out.
    [[nodiscard]] static std::shared_ptr<QueuePlayer> queuePlayerWithItems(const Items& items);
    ~QueuePlayer();
    QueuePlayer(const QueuePlayer&) = delete;
    QueuePlayer& operator=(const QueuePlayer&) = delete;

    // Telling; each takes effect in the next turn of the main loop
    void play() { setRate(1); }

    void pause() { setRate(0); }

    /// 0 stands, anything else plays at the usual speed and reads back as 1.
    void setRate(double rate);
    void setMuted(bool muted);
    /// The current item leaves unplayed, without a notification of its end.
    void advanceToNextItem();
    void removeAllItems();
    /// Calls `completion` on the main loop, once: true when the current item stands at its first picture with
    /// enough to go on with, false when it fails, is gone, or `cancelPendingPrerolls` comes first.
    void preroll(std::function<void(bool finished)> completion);
    void cancelPendingPrerolls();

    // Asking
    /// Null when the queue has run out.
    [[nodiscard]] std::shared_ptr<PlayerItem> currentItem() const;
    /// The current item and those to come. While none has left it is the list that the player was made with,
    /// which the player keeps for its life; from then on a fresh one.
    [[nodiscard]] std::shared_ptr<const Items> items() const;
    /// What was asked for: it stays 1 during a stall, after which the item goes on by itself; it turns 0 when
    /// the queue runs out.
    [[nodiscard]] double rate() const;
    [[nodiscard]] bool isMuted() const;
    /// Of the current item; 0 without one.
    [[nodiscard]] Seconds currentTime() const;

    // Observing
    /// Calls `observer` on the main loop at each change of the value, in the order of the changes, with the
    /// value before and after; setting the same value again is none. Ends with the token: once that was
    /// released on the main thread it is not called any more.
    ///
    /// "currentItem": an item's end, its failure, and nothing when the queue runs out (before "rate").
    /// "currentItem.playbackLikelyToKeepUp": a flag, or nothing where there is no current item; false at
    /// most half a second after the picture stopped for want of data.
    [[nodiscard]] std::shared_ptr<void> addObserverForKeyPath(const std::string& keyPath, Observer observer);

    /// Calls `block` on `queue` (null: the main loop) with the current item's time whenever that has passed a
    /// multiple of `interval`: for 1 s at 1.0, 2.0, … of each item, never early and only while time passes;
    /// once where several were passed at a time. The queue keeps the block until it is removed.
    [[nodiscard]] std::shared_ptr<void> addPeriodicTimeObserver(Seconds interval,
                                                                std::shared_ptr<SerialQueue> queue,
                                                                std::function<void(Seconds time)> block);
    /// A call that has begun on the queue goes on; none begins after.
    void removeTimeObserver(const std::shared_ptr<void>& token);

    // Showing
    /// Calls `arrived` on the main loop when there is a newer picture. Ends with the token, as above.
    [[nodiscard]] std::shared_ptr<void> addFrameObserver(std::function<void()> arrived);
    /// The current item's newest picture; null before its first.
    [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame();

private:
    explicit QueuePlayer(std::shared_ptr<PlayerQueue> queue) : m_queue(std::move(queue)) {}

    const std::shared_ptr<PlayerQueue> m_queue;
};

} // namespace virlo
