#include "GstMediaEngine.h"

#include "GstPlayback.h"
#include "MediaRuntime.h"

#include <utility>

namespace virlo
{

void GstMediaEngine::prepare()
{
    // Each video reports what is wrong.
    static_cast<void>(MediaRuntime::shared().prepare());
}

std::shared_ptr<MediaPlayback> GstMediaEngine::playbackOfURL(const URL& url, bool muted, Callbacks callbacks)
{
    return GstPlayback::start(url, muted, std::move(callbacks), m_limits);
}

void GstMediaEngine::stop()
{
    MediaRuntime::shared().stop();
}

bool GstMediaEngine::drain(Seconds limit)
{
    return MediaRuntime::shared().drain(limit);
}

} // namespace virlo
