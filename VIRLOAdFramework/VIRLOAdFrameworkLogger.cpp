#include "VIRLOAdFrameworkLogger.h"

#include "SerialQueue.h"
#include "SystemLog.h"

#include <atomic>
#include <utility>

const char* const VIRLOAdFrameworkLogger::kLogQueue = "com.virlohq.VIRLOLogQueue";

namespace
{
constinit std::atomic<std::int64_t> debugLevel{2};

virlo::SerialQueue& logQueue()
{
    // Never destroyed: workers log until the process ends.
    static auto& queue = *new virlo::SerialQueue(VIRLOAdFrameworkLogger::kLogQueue);
    return queue;
}
} // namespace

void VIRLOAdFrameworkLogger::setDebugLevel(std::int64_t level)
{
    debugLevel = level;
}

void VIRLOAdFrameworkLogger::log(std::int64_t smallestLevel, std::string message)
{
    if (debugLevel >= smallestLevel)
        logQueue().async([message = std::move(message)] { virlo::systemLog(message); });
}
