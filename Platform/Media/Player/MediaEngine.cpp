#include "MediaEngine.h"

#include "FailingMediaEngine.h"

#include <atomic>

namespace virlo
{

namespace
{

constinit std::atomic<MediaEngine*> engineInForce = nullptr;
constinit std::atomic<MediaEngine::Maker> engineMaker = nullptr;

MediaEngine* makeUsualEngine()
{
    if (const MediaEngine::Maker make = engineMaker.load(std::memory_order_acquire))
        return make();
    return new FailingMediaEngine("This program has nothing that plays clips");
}

} // namespace

MediaEngine& MediaEngine::shared()
{
    if (MediaEngine* const engine = engineInForce.load(std::memory_order_acquire))
        return *engine;
    static auto* const usual = makeUsualEngine();
    return *usual;
}

void MediaEngine::setShared(MediaEngine* engine)
{
    engineInForce.store(engine, std::memory_order_release);
}

void MediaEngine::setMaker(Maker maker)
{
    engineMaker.store(maker, std::memory_order_release);
}

} // namespace virlo
