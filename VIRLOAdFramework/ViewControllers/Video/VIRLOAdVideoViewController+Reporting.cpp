#include "VIRLOAdVideoViewController.h"

#include "GlobalQueue.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOVASTAd.h"
#include "VIRLOVASTTrackingManager.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <utility>

using virlo::GlobalQueue;

namespace
{

/// Truncated to a whole number of seconds that fits in 32 bits.
double threshold(double seconds)
{
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return std::isnan(seconds) ? 0 : static_cast<std::int32_t>(std::clamp(seconds, -most, most));
}

} // namespace

/// Reports that wait for the background queue, which does not keep their order by itself.
struct VIRLOAdVideoViewController::Reports {
    void run()
    {
        std::unique_lock lock(mutex);
        while (!waiting.empty()) {
            const auto report = std::move(waiting.front());
            waiting.pop_front();
            lock.unlock();
            report();
            lock.lock();
        }
        isRunning = false;
    }

    std::mutex mutex; ///< guards the following
    std::deque<std::function<void()>> waiting;
    bool isRunning = false;
};

VIRLOAdVideoViewController::VIRLOAdVideoViewController() : m_reports(std::make_shared<Reports>()) {}

VIRLOAdVideoViewController::~VIRLOAdVideoViewController() = default;

void VIRLOAdVideoViewController::enqueueReport(std::function<void()> report) const
{
    const std::lock_guard lock(m_reports->mutex);
    m_reports->waiting.push_back(std::move(report));
    if (!std::exchange(m_reports->isRunning, true))
        GlobalQueue::background().async([reports = m_reports] { reports->run(); });
}

void VIRLOAdVideoViewController::reportImpression() const
{
    if (m_videoAds.empty())
        return;
    enqueueReport(
        [ad = m_videoAds.front()] { VIRLOVASTTrackingManager::sharedManager()->reportImpressionForAd(*ad); });
}

void VIRLOAdVideoViewController::reportEvent(const char* event, const Item& item) const
{
    // The creative is looked up now: when the report runs the player may be gone.
    if (const auto creative = creativeForPlayerItem(item)) {
        enqueueReport([event, creative] {
            VIRLOVASTTrackingManager::sharedManager()->reportEventForCreative(event, *creative);
        });
    }
}

void VIRLOAdVideoViewController::reportCreativeView(const Item& item) const
{
    reportEvent("creativeView", item);
}

void VIRLOAdVideoViewController::reportStart(const Item& item) const
{
    reportEvent("start", item);
}

void VIRLOAdVideoViewController::reportPause(const Item& item) const
{
    reportEvent("pause", item);
}

void VIRLOAdVideoViewController::reportResume(const Item& item) const
{
    reportEvent("resume", item);
}

void VIRLOAdVideoViewController::reportComplete(const Item& item) const
{
    reportEvent("complete", item);
    registerRewardClick();
}

void VIRLOAdVideoViewController::registerRewardClick() const
{
    const auto items = ad() ? ad()->items() : VIRLOAdvertisement::Items();
    const auto server = api();
    if (items.empty() || !items.front()->activationCheckURL() || !server)
        return;
    GlobalQueue::background().async([server, item = items.front()] {
        server->registerClickForItemWithCompletion(*item, [item](const virlo::OptionalError&) {
            VIRLOAppRequestStore::sharedStore()->addItem(*item->activationCheckURL());
        });
    });
}

void VIRLOAdVideoViewController::reportClose() const
{
    if (const Item item = currentItem())
        reportEvent("close", item);
}

void VIRLOAdVideoViewController::reportMutedPlayer(bool muted) const
{
    if (const Item item = currentItem())
        reportEvent(muted ? "mute" : "unmute", item);
}

void VIRLOAdVideoViewController::resetQuartiles(const Item& item)
{
    const std::lock_guard lock(m_quartileMutex);
    m_quartileItem = item;
    m_firstQuartileReported = m_midpointReported = m_thirdQuartileReported = false;
}

bool VIRLOAdVideoViewController::reportVideoProgress(double seconds, const Item& item)
{
    // Reported under the lock, so that nothing of this item follows its "complete".
    const std::lock_guard lock(m_quartileMutex);
    const auto creative = item && item == m_quartileItem.lock() ? creativeForPlayerItem(item) : nullptr;
    if (!creative)
        return false;
    const double duration = creative->duration();
    const auto report = [&](const char* event, double time, bool& reported) {
        if (seconds < threshold(time) || std::exchange(reported, true))
            return false;
        reportEvent(event, item);
        return true;
    };
    return report("firstQuartile", duration * 0.25, m_firstQuartileReported) ||
           report("midpoint", duration * 0.5, m_midpointReported) ||
           report("thirdQuartile", duration * 0.25 * 3.0, m_thirdQuartileReported);
}
