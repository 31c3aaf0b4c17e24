#include "MediaEngine.h"

#include "FailingMediaEngine.h"
#include "ProcessShutdown.h"

#include <atomic>

namespace virlo
{

namespace
{

constinit std::atomic<MediaEngine*> engineInUse = nullptr;
constinit std::atomic<MediaEngine::Maker> engineMaker = nullptr;

MediaEngine& defaultEngine();

MediaEngine* makeDefaultEngine()
{
    const MediaEngine::Maker make = engineMaker.load(std::memory_order_acquire);
    if (make == nullptr)
        return new FailingMediaEngine("This program has nothing that plays videos");
    if (!ProcessShutdown::add(ProcessShutdown::Stage::Media, [] { defaultEngine().stop(); }))
        return new FailingMediaEngine("The process is exiting");
    return make();
}

MediaEngine& defaultEngine()
{
    static auto* const engine = makeDefaultEngine();
    return *engine;
}

} // namespace

MediaEngine& MediaEngine::shared()
{
    if (MediaEngine* const engine = engineInUse.load(std::memory_order_acquire))
        return *engine;
    return defaultEngine();
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
