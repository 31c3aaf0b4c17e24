#pragma once

#include "MediaEngine.h"
#include "PlayerAccessLog.h"
#include "URL.h"
#include "VideoFrame.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace virlo
{

/// One video of a QueuePlayer, which loads it when its turn comes near. It belongs to one queue, once. Every
/// query returns at once, on any thread, also after the item has left the queue: then the last values.
///
/// The notifications below are posted on the main loop with the item as their object.
class PlayerItem
{
public:
    enum class Status { Unknown, ReadyToPlay, Failed };

    /// An event was added to the access log: at the end of the transfer, when the player's buffer is full for
    /// the first time, at a stall, and when the item ends, if bytes arrived since the event before. One event
    /// a notification.
    static constexpr const char* newAccessLogEntryNotification = "AVPlayerItemNewAccessLogEntryNotification";
    static constexpr const char* didPlayToEndTimeNotification = "AVPlayerItemDidPlayToEndTimeNotification";
    /// The status is Failed now. Posted while the item is still the current one (or before it becomes it).
    static constexpr const char* failedToPlayToEndTimeNotification =
        "AVPlayerItemFailedToPlayToEndTimeNotification";
    static constexpr const char* playbackStalledNotification = "AVPlayerItemPlaybackStalledNotification";

    /// Null for a URL other than http or https with a host: a server must not choose a file of this device.
    [[nodiscard]] static std::shared_ptr<PlayerItem> playerItemWithURL(const URL& url);

    [[nodiscard]] const URL& url() const noexcept { return m_url; }

    [[nodiscard]] Status status() const;
    /// Of `MediaEngine::errorDomain`; nothing unless Failed.
    [[nodiscard]] OptionalError error() const;
    /// Whether enough of the video has arrived to continue: false until its first frame is ready, and during
    /// a stall.
    [[nodiscard]] bool isPlaybackLikelyToKeepUp() const;
    /// Never runs backwards; exactly `duration` once the item has played to its end.
    [[nodiscard]] Seconds currentTime() const;
    /// Nothing until it is known, for some videos only at their end.
    [[nodiscard]] std::optional<Seconds> duration() const;
    [[nodiscard]] PlayerAccessLog accessLog() const;
    [[nodiscard]] VideoFrameCounts videoFrameCounts() const;

private:
    friend class QueuePlayer;

    explicit PlayerItem(URL url) : m_url(std::move(url)) {}

    [[nodiscard]] bool isLoaded() const;
    void setPlayback(std::shared_ptr<MediaPlayback> playback);
    [[nodiscard]] std::shared_ptr<MediaPlayback> playback() const;
    [[nodiscard]] PlaybackFacts facts() const;
    /// Keeps the last values and returns the playback, which the caller releases.
    [[nodiscard]] std::shared_ptr<MediaPlayback> retire();
    void addToAccessLog(const PlayerAccessLogEvent& event);

    const URL m_url;
    mutable std::mutex m_mutex;
    std::shared_ptr<MediaPlayback> m_playback;
    bool m_loaded = false;
    PlaybackFacts m_lastFacts;
    Seconds m_lastTime{0};
    VideoFrameCounts m_lastCounts;
    PlayerAccessLog m_accessLog; ///< as far as it was announced

    // Used by the QueuePlayer alone
    std::size_t m_announcedEvents = 0;
    bool m_failureAnnounced = false;
};

/// One line for the log: `<PlayerItem https://…>`.
[[nodiscard]] std::string describe(const PlayerItem& item);

} // namespace virlo
