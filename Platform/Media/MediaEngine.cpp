#include "MediaEngine.h"

#include "GstMediaEngine.h"

#include <atomic>

namespace virlo
{

namespace
{
constinit std::atomic<MediaEngine*> engineInForce = nullptr;
} // namespace

MediaEngine& MediaEngine::shared()
{
    if (MediaEngine* const engine = engineInForce.load(std::memory_order_acquire))
        return *engine;
    static auto* const usual = new GstMediaEngine;
    return *usual;
}

void MediaEngine::setShared(MediaEngine* engine)
{
    engineInForce.store(engine, std::memory_order_release);
}

} // namespace virlo
