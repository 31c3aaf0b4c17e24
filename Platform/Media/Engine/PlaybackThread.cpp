#include "PlaybackThread.h"

#include "DetachedThread.h"
#include "FrameStore.h"
#include "MediaRuntime.h"
#include "SystemLog.h"
#include "TransferMeter.h"

#include <algorithm>
#include <cmath>
#include <malloc.h>
#include <utility>

namespace virlo
{

namespace
{

Seconds seconds(GstClockTime time)
{
    return std::chrono::nanoseconds(time);
}

/// The C library keeps what a thread has freed for that thread, and a clip's threads end with it: without
/// this a process would hold several clips' worth of memory after some.
void giveMemoryBack()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

/// How far a time between two looks may be carried on from the first.
constexpr Seconds longestGuess{0.25};
/// Closer to its end a clip may stand still: sound and picture seldom end together.
constexpr Seconds nearTheEnd{1};

} // namespace

PlaybackThread::PlaybackThread(URL url, bool muted, MediaEngine::Callbacks callbacks)
    : m_url(std::move(url))
    , m_callbacks(std::move(callbacks))
    , m_frames(std::make_shared<FrameStore>([this] { callBack(m_callbacks.frameArrived); }))
    , m_meter(std::make_shared<TransferMeter>())
{
    m_wishes.muted = muted;
}

PlaybackThread::~PlaybackThread() = default;

void PlaybackThread::start()
{
    // The one that ends, rather than the thread itself, lets go of what the clip held.
    if (!MediaRuntime::shared().enter(shared_from_this()))
        return;
    if (startDetachedThread("virlo-media", [self = shared_from_this()] { self->run(); }))
        return;
    fail(MediaEngine::failed, "The system gives no more threads");
    MediaRuntime::shared().leave(*this);
}

void PlaybackThread::close()
{
    m_closed = true;
    m_frames->close();
    const std::lock_guard lock(m_mutex);
    m_wake.notify_all();
}

bool PlaybackThread::isClosed() const
{
    return m_closed;
}

void PlaybackThread::callBack(const std::function<void()>& callback) const
{
    if (!m_closed && callback)
        callback();
}

// From any thread

void PlaybackThread::setPlaying(bool playing)
{
    const std::lock_guard lock(m_mutex);
    m_wishes.playing = playing;
    m_wishesAreNew = true;
    m_wake.notify_all();
}

void PlaybackThread::setMuted(bool muted)
{
    const std::lock_guard lock(m_mutex);
    m_wishes.muted = muted;
    m_wishesAreNew = true;
    m_wake.notify_all();
}

void PlaybackThread::notifyAt(Seconds time)
{
    const std::lock_guard lock(m_mutex);
    m_wishes.mark = time;
    m_wishesAreNew = true;
    m_wake.notify_all();
}

PlaybackFacts PlaybackThread::facts() const
{
    const std::lock_guard lock(m_mutex);
    return m_facts;
}

Seconds PlaybackThread::currentTime() const
{
    const std::lock_guard lock(m_mutex);
    Seconds time = m_time.position;
    if (m_time.moves)
        time += std::min<Seconds>(Instant::clock::now() - m_time.at, longestGuess);
    if (m_facts.duration)
        time = std::min(time, *m_facts.duration);
    return m_told = std::max(m_told, time);
}

// The thread

void PlaybackThread::run()
{
    if (const std::string failure = MediaRuntime::shared().prepare(); !failure.empty())
        fail(MediaEngine::failed, failure);
    else
        open();
    while (!m_closed && !isFinal(m_next.phase) && turn()) {
    }
    // May block, as long as the sound device likes.
    m_pipeline.reset();
    {
        const std::lock_guard lock(m_mutex);
        m_messages.clear();
    }
    giveMemoryBack();
    MediaRuntime::shared().leave(*this);
}

void PlaybackThread::open()
{
    GstPipeline::Options options{m_url, m_obeyed.muted, m_soundless, m_frames, m_meter, {}};
    {
        const std::lock_guard lock(m_mutex);
        options.muted = m_obeyed.muted = m_wishes.muted;
    }
    // A message keeps what posted it, and so the pipeline, whose end is awaited before this goes.
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
    m_prerolled = m_buffering = m_stalled = false;
    m_state = GST_STATE_PAUSED;
    m_pipeline->setState(GST_STATE_PAUSED);
}

void PlaybackThread::reopenSoundless(const std::string& reason)
{
    systemLog("No sound, the video goes on without: " + reason);
    m_resumeAt = currentTime();
    m_pipeline.reset();
    {
        const std::lock_guard lock(m_mutex);
        m_messages.clear();
    }
    m_soundless = true;
    open();
}

bool PlaybackThread::turn()
{
    std::deque<GstMessagePointer> messages;
    Wishes wishes;
    {
        std::unique_lock lock(m_mutex);
        const auto isCalled = [this] { return m_closed || !m_messages.empty() || m_wishesAreNew; };
        if (const auto next = nextLook())
            m_wake.wait_until(lock, *next, isCalled);
        else
            m_wake.wait(lock, isCalled);
        messages.swap(m_messages);
        wishes = m_wishes;
        m_wishesAreNew = false;
    }
    while (!messages.empty() && !m_closed && !isFinal(m_next.phase)) {
        const GstMessagePointer message = std::move(messages.front());
        messages.pop_front();
        const bool wasSoundless = m_soundless;
        handle(*message);
        if (m_soundless != wasSoundless)
            messages.clear(); // of the pipeline before
    }
    if (m_closed || isFinal(m_next.phase))
        return false;
    obey(wishes);
    look();
    publish();
    return true;
}

void PlaybackThread::obey(const Wishes& wishes)
{
    if (wishes.muted != m_obeyed.muted)
        m_pipeline->setMuted(wishes.muted);
    m_obeyed = wishes;
    const bool plays = wishes.playing && m_prerolled && !m_buffering && !m_stalled;
    const GstState state = plays ? GST_STATE_PLAYING : GST_STATE_PAUSED;
    if (std::exchange(m_state, state) != state)
        m_pipeline->setState(state);
}

std::optional<PlaybackThread::Instant> PlaybackThread::nextLook() const
{
    // `m_mutex` is held.
    if (m_prerolled && !m_buffering && !m_obeyed.playing)
        return std::nullopt;
    Seconds wait = PlaybackWatch::interval;
    if (m_wishes.mark && m_time.moves)
        wait = std::clamp(*m_wishes.mark - m_time.position, Seconds(0.001), wait);
    return Instant::clock::now() + std::chrono::duration_cast<Instant::duration>(wait);
}

void PlaybackThread::look()
{
    const auto now = Instant::clock::now();
    const auto told = m_prerolled ? m_pipeline->position() : std::nullopt;
    const Seconds position = seconds(told.value_or(0));
    if (m_prerolled && !m_next.duration) {
        if (const auto duration = m_pipeline->duration(); duration && *duration > 0)
            m_next.duration = seconds(*duration);
    }
    bool reached = false;
    PlaybackWatch::Look look{now, {}, m_meter->bytes()};
    look.isAwaited = !m_prerolled || m_buffering || m_obeyed.playing;
    look.shouldMove = m_state == GST_STATE_PLAYING;
    look.isReadInVain = !m_prerolled && m_meter->isFinished();
    {
        const std::lock_guard lock(m_mutex);
        if (told) {
            m_time.moves = look.shouldMove && position > m_time.position;
            m_time.position = std::max(m_time.position, position);
            m_time.at = now;
        }
        m_time.moves = m_time.moves && look.shouldMove;
        look.position = m_time.position;
        if (m_wishes.mark && m_time.position >= *m_wishes.mark) {
            m_wishes.mark.reset();
            reached = true;
        }
    }
    if (m_next.duration && look.position + nearTheEnd >= *m_next.duration)
        look.shouldMove = false;
    m_frames->setLate(m_pipeline->lateFrames());
    switch (m_watch.judge(look)) {
    case PlaybackWatch::Verdict::GivenUp:
        if (m_prerolled && m_next.duration && look.position + nearTheEnd >= *m_next.duration)
            end(PlaybackFacts::Phase::Ended);
        else
            fail(look.isReadInVain ? MediaEngine::notMedia : MediaEngine::timedOut, "Nothing moves any more");
        return;
    case PlaybackWatch::Verdict::Stalled:
        // Stopped until the next picture is there, which `handlePrerolled` is told: a clock that ran on would
        // make it late. Where the next one waits already, it was the machine that stood still, and nobody
        // tells; the next look at the wishes goes on.
        m_state = GST_STATE_PAUSED;
        m_stalled = !m_pipeline->setState(GST_STATE_PAUSED);
        if (m_stalled) {
            m_meter->ranDry();
            logTransfer();
        }
        break;
    case PlaybackWatch::Verdict::Fine:
        break;
    }
    if (reached)
        callBack(m_callbacks.changed);
}

void PlaybackThread::logTransfer()
{
    if (const auto event = m_meter->nextEvent())
        m_next.accessLog.push_back(*event);
}

bool PlaybackThread::isFinal(PlaybackFacts::Phase phase)
{
    return phase == PlaybackFacts::Phase::Ended || phase == PlaybackFacts::Phase::Failed;
}

void PlaybackThread::end(PlaybackFacts::Phase phase)
{
    logTransfer();
    m_next.phase = phase;
    {
        const std::lock_guard lock(m_mutex);
        m_time.moves = false;
        if (phase == PlaybackFacts::Phase::Ended) {
            if (!m_next.duration || *m_next.duration < m_told)
                m_next.duration = std::max(m_time.position, m_told);
            m_time.position = *m_next.duration;
        }
    }
    publish();
}

void PlaybackThread::fail(MediaEngine::ErrorCode code, const std::string& reason)
{
    m_next.error =
        Error{MediaEngine::errorDomain, code, {{"Reason", reason}, {"URL", m_url.absoluteString()}}};
    end(PlaybackFacts::Phase::Failed);
}

void PlaybackThread::publish()
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
