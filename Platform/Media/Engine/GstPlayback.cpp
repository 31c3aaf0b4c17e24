#include "GstPlayback.h"

#include "FrameStore.h"
#include "PlaybackThread.h"

#include <utility>

namespace virlo
{

GstPlayback::GstPlayback(const URL& url, bool muted, MediaEngine::Callbacks callbacks)
    : m_thread(std::make_shared<PlaybackThread>(url, muted, std::move(callbacks)))
{
    m_thread->start();
}

GstPlayback::~GstPlayback()
{
    m_thread->close();
}

void GstPlayback::setPlaying(bool playing)
{
    m_thread->setPlaying(playing);
}

void GstPlayback::setMuted(bool muted)
{
    m_thread->setMuted(muted);
}

PlaybackFacts GstPlayback::facts() const
{
    return m_thread->facts();
}

Seconds GstPlayback::currentTime() const
{
    return m_thread->currentTime();
}

std::shared_ptr<const VideoFrame> GstPlayback::takeFrame()
{
    return m_thread->frames().take();
}

VideoFrameCounts GstPlayback::frameCounts() const
{
    return m_thread->frames().counts();
}

void GstPlayback::notifyAt(Seconds time)
{
    m_thread->notifyAt(time);
}

} // namespace virlo
