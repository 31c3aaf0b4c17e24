#pragma once

#include "Clock.h"
#include "Error.h"
#include "PlayerAccessLog.h"
#include "URL.h"
#include "VideoFrame.h"

#include <functional>
#include <memory>
#include <optional>

namespace virlo
{

/// What can be said of one clip's playback at a moment. A value.
struct PlaybackFacts {
    /// Loading until the first picture stands (or the first sound, where there is none); Ended once all has
    /// been shown; Failed at any time. The last two are final.
    enum class Phase { Loading, Ready, Ended, Failed };

    Phase phase = Phase::Loading;
    /// Whether there is enough of the clip here to go on with.
    bool likelyToKeepUp = false;
    /// Nothing more of the clip comes over the network.
    bool transferred = false;
    std::optional<Seconds> duration = {}; ///< nothing while unknown
    OptionalError error = {};             ///< where Failed
    PlayerAccessLog accessLog = {};       ///< only ever grows
};

/// One clip, being loaded from its making, standing at its start until `setPlaying`. A stalled one goes on by
/// itself. Any thread; nothing here waits for network, disk or decoder. Letting go of it ends it at once for
/// the caller: neither callback begins after that on the same thread, and what has to be torn down is torn
/// down elsewhere.
class MediaPlayback
{
public:
    virtual ~MediaPlayback() = default;

    virtual void setPlaying(bool playing) = 0;
    virtual void setMuted(bool muted) = 0;

    [[nodiscard]] virtual PlaybackFacts facts() const = 0;
    /// Of the clip; never runs backwards, and is exactly the duration once Ended.
    [[nodiscard]] virtual Seconds currentTime() const = 0;
    /// The newest picture due; null before the first. Taking it is what makes it seen.
    [[nodiscard]] virtual std::shared_ptr<const VideoFrame> takeFrame() = 0;
    [[nodiscard]] virtual VideoFrameCounts frameCounts() const = 0;
    /// Asks for one `changed` when the clip's time has reached `time`; replaces what was asked before.
    virtual void notifyAt(Seconds time) = 0;
};

/// What plays clips: GStreamer, or whatever a test or a device puts in its place. Any thread.
class MediaEngine
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.media";

    /// Errors carry "Reason" and "URL" in userInfo.
    enum ErrorCode {
        failed = 1,
        unreachable = 2, ///< refused, not found, cut off
        notMedia = 3,    ///< neither a video nor a sound, or damaged
        noDecoder = 4,   ///< a video that nothing on this device decodes
        timedOut = 5     ///< nothing came, or moved on, for too long
    };

    /// Both may come on any thread, also before the making has returned, and must be short.
    struct Callbacks {
        std::function<void()> changed;      ///< `facts` has changed, or a time asked for was reached
        std::function<void()> frameArrived; ///< a newer picture is due
    };

    using Maker = MediaEngine* (*)();

    virtual ~MediaEngine() = default;

    /// Does what takes time before a first clip. May take as long as the disk likes: not on the main thread.
    /// A clip that was not prepared for does it itself.
    virtual void prepare() {}

    [[nodiscard]] virtual std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                                       Callbacks callbacks) = 0;

    /// The engine in force: the usual one unless one was set. The first call for the usual one makes it, for
    /// which the disk may be read: who is about to play something calls it from a worker first.
    [[nodiscard]] static MediaEngine& shared();
    /// Puts `engine` in force for what is made from here on, or the usual one again for null. Not owned.
    static void setShared(MediaEngine* engine);
    /// Says who makes the usual engine; without a maker it is one whose clips all fail. For static
    /// initialisers.
    static void setMaker(Maker maker);
};

} // namespace virlo
