#include "GstMediaEngine.h"

#include "GstPlayback.h"
#include "MediaRuntime.h"

#include <utility>

namespace virlo
{

void GstMediaEngine::prepare()
{
    // What is wrong is said by each clip.
    static_cast<void>(MediaRuntime::shared().prepare());
}

std::shared_ptr<MediaPlayback> GstMediaEngine::playbackOfURL(const URL& url, bool muted, Callbacks callbacks)
{
    return std::make_shared<GstPlayback>(url, muted, std::move(callbacks));
}

bool GstMediaEngine::drain(Seconds limit)
{
    return MediaRuntime::shared().drain(limit);
}

} // namespace virlo
