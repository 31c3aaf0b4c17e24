#include "GstPlayback.h"

#include "DetachedThread.h"
#include "FrameStore.h"
#include "FreeMemory.h"
#include "MediaRuntime.h"
#include "SystemLog.h"
#include "TransferMeter.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace virlo
{

namespace
{

Seconds seconds(GstClockTime time)
{
    return std::chrono::nanoseconds(time);
}

/// How far the time is extrapolated from the last sample.
constexpr Seconds longestExtrapolation{0.25};
/// This close to its end a video may stop moving: sound and frames seldom end together.
constexpr Seconds nearTheEnd{1};

} // namespace

GstPlayback::GstPlayback(URL url, bool muted, MediaEngine::Callbacks callbacks, const PlaybackLimits& limits)
    : m_url(std::move(url))
    , m_callbacks(std::move(callbacks))
    , m_limits(limits)
    , m_frames(std::make_shared<FrameStore>([this] { callBack(m_callbacks.frameArrived); }))
    , m_meter(std::make_shared<TransferMeter>())
    , m_monitor(limits)
{
    m_requests.muted = muted;
}

GstPlayback::~GstPlayback() = default;

std::shared_ptr<MediaPlayback>
GstPlayback::start(const URL& url, bool muted, MediaEngine::Callbacks callbacks, const PlaybackLimits& limits)
{
    const std::shared_ptr<GstPlayback> playback(new GstPlayback(url, muted, std::move(callbacks), limits));
    // Where the process exits, nothing is started and nothing reported. The runtime's reference is released
    // by whoever ends the playback, rather than by its own thread.
    if (MediaRuntime::shared().enter(playback) &&
        !startDetachedThread("virlo-media", [playback] { playback->run(); })) {
        playback->fail(MediaEngine::failed, "The system gives no more threads");
        MediaRuntime::shared().leave(*playback);
    }
    return {playback.get(), [playback](MediaPlayback*) { playback->close(); }};
}

void GstPlayback::close()
{
    m_closed = true;
    m_frames->close();
    const std::lock_guard lock(m_mutex);
    m_wake.notify_all();
}

bool GstPlayback::isClosed() const
{
    return m_closed;
}

void GstPlayback::callBack(const std::function<void()>& callback) const
{
    if (!m_closed && callback)
        callback();
}

// From any thread

void GstPlayback::setPlaying(bool playing)
{
    const std::lock_guard lock(m_mutex);
    m_requests.playing = playing;
    m_hasNewRequests = true;
    m_wake.notify_all();
}

void GstPlayback::setMuted(bool muted)
{
    const std::lock_guard lock(m_mutex);
    m_requests.muted = muted;
    m_hasNewRequests = true;
    m_wake.notify_all();
}

void GstPlayback::notifyAt(Seconds time)
{
    const std::lock_guard lock(m_mutex);
    m_requests.notifyAt = time;
    m_hasNewRequests = true;
    m_wake.notify_all();
}

PlaybackFacts GstPlayback::facts() const
{
    const std::lock_guard lock(m_mutex);
    return m_facts;
}

std::shared_ptr<const VideoFrame> GstPlayback::takeFrame()
{
    return m_frames->take();
}

VideoFrameCounts GstPlayback::frameCounts() const
{
    return m_frames->counts();
}

Seconds GstPlayback::currentTime() const
{
    const std::lock_guard lock(m_mutex);
    Seconds time = m_time.position;
    if (m_time.moves)
        time += std::min<Seconds>(Instant::clock::now() - m_time.at, longestExtrapolation);
    if (m_facts.duration)
        time = std::min(time, *m_facts.duration);
    return m_highestTime = std::max(m_highestTime, time);
}

// The thread

void GstPlayback::run()
{
    if (const std::string failure = MediaRuntime::shared().prepare(); !failure.empty())
        fail(MediaEngine::failed, failure);
    else
        open();
    while (!m_closed && !isFinal(m_next.phase) && turn()) {
    }
    // May block for as long as the sound device does.
    m_pipeline.reset();
    {
        const std::lock_guard lock(m_mutex);
        m_messages.clear();
    }
    // After twenty videos of 1280×720 a process holds 70 MiB more than after the first, with this less
    // than 20.
    returnFreeMemory();
    MediaRuntime::shared().leave(*this);
}

void GstPlayback::open()
{
    GstPipeline::Options options{m_url, false, m_frames, m_meter, m_limits, {}};
    {
        const std::lock_guard lock(m_mutex);
        options.muted = m_applied.muted = m_requests.muted;
    }
    // `this` outlives the pipeline, whose destruction waits for whoever posts messages.
    options.message = [this](GstMessagePointer message) {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(std::move(message));
        m_wake.notify_all();
    };
    m_pipeline = GstPipeline::make(std::move(options));
    if (!m_pipeline) {
        fail(MediaEngine::failed, "A part of GStreamer is missing");
        return;
    }
    m_state = GST_STATE_PAUSED;
    m_pipeline->setState(GST_STATE_PAUSED);
}

bool GstPlayback::turn()
{
    std::deque<GstMessagePointer> messages;
    Requests requests;
    {
        std::unique_lock lock(m_mutex);
        const auto isCalled = [this] { return m_closed || !m_messages.empty() || m_hasNewRequests; };
        if (const auto next = nextWake())
            m_wake.wait_until(lock, *next, isCalled);
        else
            m_wake.wait(lock, isCalled);
        messages.swap(m_messages);
        requests = m_requests;
        m_hasNewRequests = false;
    }
    while (!messages.empty() && !m_closed && !isFinal(m_next.phase)) {
        const GstMessagePointer message = std::move(messages.front());
        messages.pop_front();
        handle(*message);
    }
    if (m_closed || isFinal(m_next.phase))
        return false;
    apply(requests);
    checkProgress();
    publish();
    return true;
}

void GstPlayback::apply(const Requests& requests)
{
    if (requests.muted != m_applied.muted)
        m_pipeline->setMuted(requests.muted);
    m_applied = requests;
    const bool plays = requests.playing && m_prerolled && !m_buffering && !m_stalled;
    const GstState state = plays ? GST_STATE_PLAYING : GST_STATE_PAUSED;
    if (std::exchange(m_state, state) != state)
        m_pipeline->setState(state);
}

std::optional<GstPlayback::Instant> GstPlayback::nextWake() const
{
    // `m_mutex` is held.
    if (m_prerolled && !m_buffering && !m_applied.playing)
        return std::nullopt;
    Seconds wait = PlaybackMonitor::interval;
    if (m_requests.notifyAt && m_time.moves)
        wait = std::clamp(*m_requests.notifyAt - m_time.position, Seconds(0.001), wait);
    return Instant::clock::now() + std::chrono::duration_cast<Instant::duration>(wait);
}

void GstPlayback::checkProgress()
{
    if (m_prerolled && !m_next.duration) {
        if (const auto duration = m_pipeline->duration(); duration && *duration > 0)
            m_next.duration = seconds(*duration);
    }
    PlaybackMonitor::Sample sample{Instant::clock::now(), {}, m_meter->bytes()};
    sample.isWaitedFor = !m_prerolled || m_buffering || m_applied.playing;
    sample.shouldMove = m_state == GST_STATE_PLAYING;
    sample.isUnplayedFile = !m_prerolled && m_meter->isFinished();
    const bool reached = updateTime(sample);
    if (isNearEnd(sample.position))
        sample.shouldMove = false;
    m_frames->setLate(m_pipeline->lateFrames());
    switch (m_monitor.update(sample)) {
    case PlaybackMonitor::Verdict::TimedOut:
        if (m_prerolled && isNearEnd(sample.position))
            end(PlaybackFacts::Phase::Ended);
        else
            fail(sample.isUnplayedFile ? MediaEngine::notMedia : MediaEngine::timedOut,
                 "Nothing moves any more");
        return;
    case PlaybackMonitor::Verdict::Stalled:
        // Paused until the next frame has arrived, which ASYNC_DONE tells: a clock that continued would make
        // it late. Where the next frame is already there the whole process was suspended: no ASYNC_DONE
        // follows, and the next `apply` resumes.
        m_state = GST_STATE_PAUSED;
        m_stalled = !m_pipeline->setState(GST_STATE_PAUSED);
        if (m_stalled) {
            m_meter->ranDry();
            logTransfer();
        }
        break;
    case PlaybackMonitor::Verdict::Fine:
        break;
    }
    if (reached)
        callBack(m_callbacks.changed);
}

bool GstPlayback::updateTime(PlaybackMonitor::Sample& sample)
{
    const auto known = m_prerolled ? m_pipeline->position() : std::nullopt;
    const Seconds position = seconds(known.value_or(0));
    const std::lock_guard lock(m_mutex);
    if (known) {
        m_time.moves = sample.shouldMove && position > m_time.position;
        m_time.position = std::max(m_time.position, position);
        m_time.at = sample.at;
    }
    m_time.moves = m_time.moves && sample.shouldMove;
    sample.position = m_time.position;
    if (!m_requests.notifyAt || m_time.position < *m_requests.notifyAt)
        return false;
    m_requests.notifyAt.reset();
    return true;
}

bool GstPlayback::isNearEnd(Seconds position) const
{
    return m_next.duration && position + nearTheEnd >= *m_next.duration;
}

void GstPlayback::logTransfer()
{
    if (const auto event = m_meter->nextEvent())
        m_next.accessLog.push_back(*event);
}

bool GstPlayback::isFinal(PlaybackFacts::Phase phase)
{
    return phase == PlaybackFacts::Phase::Ended || phase == PlaybackFacts::Phase::Failed;
}

void GstPlayback::end(PlaybackFacts::Phase phase)
{
    logTransfer();
    m_next.phase = phase;
    const bool hasEnded = phase == PlaybackFacts::Phase::Ended;
    const Seconds position = seconds(hasEnded ? m_pipeline->position().value_or(0) : 0);
    {
        const std::lock_guard lock(m_mutex);
        m_time.moves = false;
        if (hasEnded) {
            const Seconds played = std::max({m_time.position, position, m_highestTime});
            // A file that is cut off is only as long as what was played of it.
            if (!isNearEnd(played) || *m_next.duration < m_highestTime)
                m_next.duration = played;
            m_time.position = *m_next.duration;
        }
    }
    publish();
}

void GstPlayback::fail(MediaEngine::ErrorCode code, const std::string& reason)
{
    m_next.error =
        Error{MediaEngine::errorDomain, code, {{"Reason", reason}, {"URL", m_url.absoluteString()}}};
    end(PlaybackFacts::Phase::Failed);
}

void GstPlayback::publish()
{
    if (m_prerolled && m_next.phase == PlaybackFacts::Phase::Loading)
        m_next.phase = PlaybackFacts::Phase::Ready;
    m_next.likelyToKeepUp =
        m_next.phase == PlaybackFacts::Phase::Ended ||
        (m_next.phase == PlaybackFacts::Phase::Ready && m_prerolled && !m_buffering && !m_stalled);
    const bool transferred = m_meter->isFinished();
    if ((transferred && !m_next.transferred) || (m_meter->isThrottled() && !m_throttleLogged)) {
        m_throttleLogged = true;
        logTransfer();
    }
    m_next.transferred = transferred;
    {
        const std::lock_guard lock(m_mutex);
        if (m_facts.phase == m_next.phase && m_facts.likelyToKeepUp == m_next.likelyToKeepUp &&
            m_facts.transferred == m_next.transferred && m_facts.duration == m_next.duration &&
            m_facts.accessLog.size() == m_next.accessLog.size())
            return;
        m_facts = m_next;
    }
    callBack(m_callbacks.changed);
}

} // namespace virlo
