#include "PlaybackThread.h"

#include "GstReport.h"
#include "TransferMeter.h"

#include <utility>

namespace virlo
{

void PlaybackThread::handle(GstMessage& message)
{
    switch (GST_MESSAGE_TYPE(&message)) {
    case GST_MESSAGE_ERROR:
        handleError(message);
        break;
    case GST_MESSAGE_EOS:
        if (m_pipeline->isPipeline(message))
            end(PlaybackFacts::Phase::Ended);
        break;
    case GST_MESSAGE_BUFFERING: {
        gint percent = 0;
        gst_message_parse_buffering(&message, &percent);
        handleBuffering(percent);
        break;
    }
    case GST_MESSAGE_ASYNC_DONE:
        if (m_pipeline->isPipeline(message))
            handlePrerolled();
        break;
    case GST_MESSAGE_CLOCK_LOST:
        // The next look at the wishes starts it again with another clock.
        m_pipeline->setState(GST_STATE_PAUSED);
        m_state = GST_STATE_PAUSED;
        break;
    case GST_MESSAGE_LATENCY:
        m_pipeline->recalculateLatency();
        break;
    case GST_MESSAGE_ELEMENT:
        // A sound that cannot be decoded is left out; a video without its picture is none.
        if (const std::string caps = undecodableCaps(message); caps.starts_with("video/"))
            fail(MediaEngine::noDecoder, "No decoder for " + caps);
        break;
    default:
        break;
    }
}

void PlaybackThread::handleError(GstMessage& message)
{
    const GstReport report(message);
    if (m_pipeline->isAudioSink(message) && !m_soundless)
        reopenSoundless(report.reason);
    else
        fail(report.code, report.reason);
}

void PlaybackThread::handlePrerolled()
{
    if (m_resumeAt && *m_resumeAt > Seconds(0)) {
        const auto time = std::chrono::duration_cast<std::chrono::nanoseconds>(*m_resumeAt);
        m_resumeAt.reset();
        m_pipeline->seek(static_cast<GstClockTime>(time.count()));
        return;
    }
    m_prerolled = true;
    m_stalled = false;
}

void PlaybackThread::handleBuffering(int percent)
{
    const bool before = std::exchange(m_buffering, percent < 100);
    if (m_buffering && !before && m_prerolled) {
        m_meter->ranDry();
        logTransfer();
    }
}

} // namespace virlo
