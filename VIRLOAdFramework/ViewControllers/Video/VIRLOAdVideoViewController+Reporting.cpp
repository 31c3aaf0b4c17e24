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
#include <limits>

using virlo::GlobalQueue;

namespace
{

/// Cut to a whole number of seconds towards zero; more than a counter holds is the most that it holds.
double threshold(double seconds)
{
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return std::isnan(seconds) ? 0 : static_cast<std::int32_t>(std::clamp(seconds, -most, most));
}

} // namespace

void VIRLOAdVideoViewController::reportImpression() const
{
    if (m_videoAds.empty())
        return;
    GlobalQueue::background().async(
        [ad = m_videoAds.front()] { VIRLOVASTTrackingManager::sharedManager()->reportImpressionForAd(*ad); });
}

void VIRLOAdVideoViewController::reportEvent(const char* event, const Item& item) const
{
    // The creative is looked up now: in the worker's time the player may have gone.
    if (const auto creative = creativeForPlayerItem(item)) {
        GlobalQueue::background().async([event, creative] {
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
    registerCompletion();
}

void VIRLOAdVideoViewController::registerCompletion() const
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

void VIRLOAdVideoViewController::reportMutedPlayer() const
{
    const auto player = currentPlayer();
    const Item item = currentItem();
    if (item)
        reportEvent(player->isMuted() ? "mute" : "unmute", item);
}

void VIRLOAdVideoViewController::reportVideoProgress(double seconds)
{
    const Item item = currentItem();
    // A tick of the film before may come when the next one is there already; no film's time runs backwards.
    if (!item || seconds > item->currentTime().count())
        return;
    const auto creative = creativeForPlayerItem(item);
    if (!creative)
        return;
    const double duration = creative->duration();
    const auto isDue = [seconds](double moment, std::atomic<bool>& reported) {
        return seconds >= threshold(moment) && !reported.exchange(true);
    };
    if (isDue(duration * 0.25, m_firstQuartileReported))
        reportEvent("firstQuartile", item);
    else if (isDue(duration * 0.5, m_midpointReported))
        reportEvent("midpoint", item);
    else if (isDue(duration * 0.25 * 3.0, m_thirdQuartileReported))
        reportEvent("thirdQuartile", item);
}
