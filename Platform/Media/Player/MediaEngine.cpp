#include "MediaEngine.h"

#include "FailingMediaEngine.h"

#include <atomic>

namespace virlo
{

namespace
{

constinit std::atomic<MediaEngine*> engineInUse = nullptr;
constinit std::atomic<MediaEngine::Maker> engineMaker = nullptr;

MediaEngine* makeDefaultEngine()
{
    if (const MediaEngine::Maker make = engineMaker.load(std::memory_order_acquire))
        return make();
    return new FailingMediaEngine("This program has nothing that plays videos");
}

} // namespace

MediaEngine& MediaEngine::shared()
{
    if (MediaEngine* const engine = engineInUse.load(std::memory_order_acquire))
        return *engine;
    static auto* const engine = makeDefaultEngine();
    return *engine;
}

void MediaEngine::setShared(MediaEngine* engine)
{
    engineInUse.store(engine, std::memory_order_release);
}

void MediaEngine::setMaker(Maker maker)
{
    engineMaker.store(maker, std::memory_order_release);
}

} // namespace virlo
