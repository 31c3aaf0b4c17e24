#include "GstPlayback.h"

#include "GstReport.h"
#include "SystemLog.h"
#include "TransferMeter.h"

#include <utility>

namespace virlo
{

void GstPlayback::handle(GstMessage& message)
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
        // The next `apply` starts it again with another clock.
        m_pipeline->setState(GST_STATE_PAUSED);
        m_state = GST_STATE_PAUSED;
        break;
    case GST_MESSAGE_LATENCY:
        m_pipeline->recalculateLatency();
        break;
    case GST_MESSAGE_ELEMENT:
        // A sound that cannot be decoded is left out; a video without frames is none.
        if (const std::string caps = undecodableCaps(message); caps.starts_with("video/"))
            fail(MediaEngine::noDecoder, "No decoder for " + caps);
        break;
    default:
        break;
    }
}

void GstPlayback::handleError(GstMessage& message)
{
    const GstReport report(message);
    if (!m_pipeline->isSoundDevice(message)) {
        fail(report.code, report.reason);
        return;
    }
    if (!m_pipeline->dropSound())
        return;
    systemLog("No sound, the video continues without: " + report.reason);
    m_state = GST_STATE_PAUSED; // the next `apply` resumes, with another clock
}

void GstPlayback::handlePrerolled()
{
    m_prerolled = true;
    m_stalled = false;
}

void GstPlayback::handleBuffering(int percent)
{
    const bool before = std::exchange(m_buffering, percent < 100);
    if (m_buffering && !before && m_prerolled) {
        m_meter->ranDry();
        logTransfer();
    }
}

} // namespace virlo
