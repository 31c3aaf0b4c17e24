#include "VIRLOAdReports.h"

#include "GlobalQueue.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"

#include <utility>

using virlo::GlobalQueue;
using virlo::OptionalError;
using virlo::URL;

void VIRLOAdReports::reportImpression(const std::shared_ptr<VIRLOAdServerAPI>& api,
                                      const std::shared_ptr<VIRLOAdItem>& item)
{
    if (!api || !item || item->impressionMarked())
        return;
    GlobalQueue::background().async([api, item] {
        api->registerImpressionForItemWithCompletion(*item, [item](const OptionalError& error) {
            if (!error)
                item->setImpressionMarked(true);
        });
    });
}

void VIRLOAdReports::reportClick(const std::shared_ptr<VIRLOAdServerAPI>& api,
                                 const std::shared_ptr<VIRLOAdItem>& item, PageCompletion completion)
{
    if (!completion)
        completion = [](const std::optional<URL>&) {};
    const auto button = item ? item->actionButton() : nullptr;
    const auto action = button ? button->actionType() : std::nullopt;
    const bool isApp = action == "CLICK_TO_APPSTORE";
    if (!api || (!isApp && action != "CLICK_TO_CONTENT")) {
        GlobalQueue::standard().async([completion = std::move(completion)] { completion(std::nullopt); });
        return;
    }
    // A failure of a step does not stop the next.
    api->registerClickForItemWithCompletion(
        *item, [api, item, isApp, completion = std::move(completion)](const OptionalError&) {
            if (!isApp) {
                completion(item->clickURL());
                return;
            }
            api->initiateAppDownloadByURLWithCompletion(
                item->clickURL(), [item, completion](const std::optional<URL>& page, const OptionalError&) {
                    if (item->activationCheckURL())
                        VIRLOAppRequestStore::sharedStore()->addItem(*item->activationCheckURL());
                    completion(page);
                });
        });
}
