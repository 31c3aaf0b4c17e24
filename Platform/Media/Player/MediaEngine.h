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

/// The state of one video's playback at a moment. A value.
struct PlaybackFacts {
    /// Loading until the first frame is ready (or the first sound, where there are no frames); Ended once all
    /// has been shown; Failed at any time. The last two are final.
    enum class Phase { Loading, Ready, Ended, Failed };

    Phase phase = Phase::Loading;
    /// Whether enough of the video has arrived to continue.
    bool likelyToKeepUp = false;
    /// Nothing more of the video is still to be transferred.
    bool transferred = false;
    std::optional<Seconds> duration = {}; ///< nothing while unknown
    OptionalError error = {};             ///< where Failed
    PlayerAccessLog accessLog = {};       ///< only ever grows
};

/// One video. It loads from the beginning, paused at its start until `setPlaying`. After a stall it continues
/// by itself. Any thread; nothing here waits for network, disk or decoder. Released, it ends at once for the
/// caller: no callback begins after that on the same thread, and teardown runs elsewhere.
class MediaPlayback
{
public:
    virtual ~MediaPlayback() = default;

    virtual void setPlaying(bool playing) = 0;
    virtual void setMuted(bool muted) = 0;

    [[nodiscard]] virtual PlaybackFacts facts() const = 0;
    /// Never runs backwards, and is exactly the duration once Ended.
    [[nodiscard]] virtual Seconds currentTime() const = 0;
    /// The newest frame that is due; null before the first. It counts as shown once it was taken.
    [[nodiscard]] virtual std::shared_ptr<const VideoFrame> takeFrame() = 0;
    [[nodiscard]] virtual VideoFrameCounts frameCounts() const = 0;
    /// Requests one `changed` when `currentTime` has reached `time`; replaces an earlier request.
    virtual void notifyAt(Seconds time) = 0;
};

/// What plays videos: GStreamer, or whatever a test or a device puts in its place. Any thread.
class MediaEngine
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.media";

    /// Errors carry "Reason" and "URL" in userInfo.
    enum ErrorCode {
        failed = 1,
        unreachable = 2, ///< refused, not found, cut off
        notMedia = 3,    ///< neither a video nor sound, or damaged
        noDecoder = 4,   ///< a video that nothing on this device decodes
        timedOut = 5     ///< nothing arrived or moved for too long
    };

    /// Both may be called on any thread, also before `playbackOfURL` has returned, and must be short.
    struct Callbacks {
        std::function<void()> changed;      ///< `facts` has changed, or a requested time was reached
        std::function<void()> frameArrived; ///< a newer frame is due
    };

    using Maker = MediaEngine* (*)();

    virtual ~MediaEngine() = default;

    /// Does what takes time before the first video. Reads the disk: not on the main thread. A playback that
    /// was not prepared does it itself.
    virtual void prepare() {}

    [[nodiscard]] virtual std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                                       Callbacks callbacks) = 0;

    /// Ends every playback for good and waits for it, within limits of its own. Called when the process
    /// exits, for the default engine only.
    virtual void stop() {}

    /// The engine in use: the default one unless another was set. The first call for the default one makes
    /// it, which may read the disk: whoever is about to play something calls this from a worker first.
    [[nodiscard]] static MediaEngine& shared();
    /// Uses `engine` for later playbacks, or the default one again for null. Not owned.
    static void setShared(MediaEngine* engine);
    /// Sets what makes the default engine. At the program's start; without a maker every video fails.
    static void setMaker(Maker maker);
};

} // namespace virlo
