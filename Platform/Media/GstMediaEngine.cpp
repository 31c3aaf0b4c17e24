#include "GstMediaEngine.h"

#include "GstPlayback.h"
#include "MediaRuntime.h"

#include <utility>

namespace virlo
{

std::shared_ptr<MediaPlayback> GstMediaEngine::playbackOfURL(const URL& url, bool muted, Callbacks callbacks)
{
    return std::make_shared<GstPlayback>(url, muted, std::move(callbacks));
}

bool GstMediaEngine::drain(Seconds limit)
{
    return MediaRuntime::shared().drain(limit);
}

} // namespace virlo
