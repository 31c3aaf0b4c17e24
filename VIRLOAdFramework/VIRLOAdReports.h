#pragma once

#include "Export.h"
#include "URL.h"

#include <functional>
#include <memory>
#include <optional>

class VIRLOAdItem;
class VIRLOAdServerAPI;

/// What a screen of a host's own (VIRLOAdScreens.h) reports about an item. Any thread; returns at once. A
/// report that fails is not repeated. Without `api` or `item` nothing is reported.
namespace VIRLOAdReports
{
/// The item is shown. Does nothing once the server has accepted a report of this item, so a screen may call
/// it each time that it shows the item.
VIRLO_EXPORT void reportImpression(const std::shared_ptr<VIRLOAdServerAPI>& api,
                                   const std::shared_ptr<VIRLOAdItem>& item);

/// The URL to open: for "CLICK_TO_APPSTORE" the end of the redirects of the item's `clickURL`, for
/// "CLICK_TO_CONTENT" that URL itself (where nothing opens it, `clickFallback` is the one to try). Nothing
/// for an item without such an action, or where the server gives no response.
using PageCompletion = std::function<void(const std::optional<virlo::URL>& page)>;

/// The viewer has chosen the item: registers the click and finds the page to open. For an app it also keeps
/// the item's `activationCheckURL`, which is checked for a reward from then on. `completion` is called once,
/// on a worker.
VIRLO_EXPORT void reportClick(const std::shared_ptr<VIRLOAdServerAPI>& api,
                              const std::shared_ptr<VIRLOAdItem>& item, PageCompletion completion);
} // namespace VIRLOAdReports
