#include "ASCII.h"
#include "JSONReading.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdvertisement.h"

#include <algorithm>
#include <utility>

using virlo::JSON;
using virlo::OptionalError;

namespace
{
VIRLOAdServerAPI::RequestCompletion passingError(VIRLOAdServerAPI::ErrorCompletion completion)
{
    return [completion = std::move(completion)](const std::optional<JSON>&, const OptionalError& error,
                                                const VIRLOAdServerAPI::Response&) {
        if (completion)
            completion(error);
    };
}

std::string percentEncoded(const std::string& text)
{
    const bool onlyDots = std::ranges::all_of(text, [](char each) { return each == '.'; });
    std::string result;
    virlo::ASCII::appendPercentEncoded(result, text, [onlyDots](char each) {
        const char lower = virlo::ASCII::lowercase(each);
        return (lower >= 'a' && lower <= 'z') || (each >= '0' && each <= '9') || each == '-' || each == '_' ||
               each == '~' || (each == '.' && !onlyDots);
    });
    return result;
}
} // namespace

// The identifier is one path segment: a slash or dots in it must not lead to another path.
virlo::URL VIRLOAdServerAPI::identifiedURL(const std::string& path, const std::string& identifier) const
{
    const virlo::URL parent = m_entryPoint.appendingPathComponent(path);
    return virlo::URL::fromString(parent.absoluteString() + "/" + percentEncoded(identifier))
        .value_or(parent);
}

virlo::URL VIRLOAdServerAPI::sessionURL() const
{
    return m_entryPoint.appendingPathComponent("app/sess/");
}

void VIRLOAdServerAPI::retrieveAdvertisementForPlacementOfTypeWithCompletion(
    const std::string& placement, VIRLOAdvertisementType type, AdvertisementCompletion completion)
{
    checkSessionAndDo([weak = weak_from_this(), placement, type, completion = std::move(completion)] {
        const auto self = weak.lock();
        if (!self)
            return;
        std::vector<std::pair<std::string, std::string>> query = {{"app", self->appIdentifier()},
                                                                  {"placement", placement}};
        if (type != VIRLOAdvertisementType::Any)
            query.emplace_back("type", VIRLOAdvertisement::stringByType(type).value_or(""));
        const virlo::URL url = self->m_entryPoint.appendingPathComponent("ad/req").appendingQueryItems(query);
        VIRLOAdFrameworkLogger::logInfoWithFormat("Request Ad with URL: %@", url);
        self->sessionGETtoURLWithCompletionHandler(
            url,
            [completion](const std::optional<JSON>& payload, const OptionalError& error, const Response&) {
                if (payload)
                    completion(VIRLOAdvertisement::initWithDictionary(*payload), std::nullopt);
                else
                    completion(nullptr, error);
            });
    });
}

void VIRLOAdServerAPI::retrieveAdditionalItemsForAdWithCompletion(
    std::shared_ptr<VIRLOAdvertisement> advertisement, MoreItemsCompletion completion)
{
    if (!addCompletionHandlerForAdvertisementUpdate(std::move(completion), *advertisement))
        return;
    const auto url = advertisement->moreItemsURL();
    sessionGETtoURLWithCompletionHandler(
        url, [self = shared_from_this(), advertisement = std::move(advertisement)](
                 const std::optional<JSON>& payload, const OptionalError& error, const Response&) {
            std::size_t start = 0;
            std::size_t count = 0;
            if (payload) {
                start = advertisement->numberOfItems();
                count = virlo::JSONReading::array(*payload, "ads").size();
                advertisement->updateWithDictionary(*payload);
            }
            // Removed before they are called, so that a completion may request the next page.
            auto& table = self->m_completionHandlersForAdvertisementUpdate;
            for (const MoreItemsCompletion& handler :
                 table.remove(table.key(advertisement->txId(), advertisement.get()))) {
                if (handler)
                    handler(start, count, payload ? std::nullopt : error);
            }
        });
}

void VIRLOAdServerAPI::registerImpressionForItemWithCompletion(const VIRLOAdItem& item,
                                                               ErrorCompletion completion)
{
    sessionPOSTwithDicitonaryToURLWithCompletionHandler(JSON::object(), item.impressionURL(),
                                                        passingError(std::move(completion)));
}

void VIRLOAdServerAPI::registerClickForItemWithCompletion(const VIRLOAdItem& item, ErrorCompletion completion)
{
    registerClickForItemWithDataWithCompletion(item, JSON::object(), std::move(completion));
}

void VIRLOAdServerAPI::registerClickForItemWithDataWithCompletion(const VIRLOAdItem& item, const JSON& data,
                                                                  ErrorCompletion completion)
{
    sessionPOSTwithDicitonaryToURLWithCompletionHandler(data, item.clickTracker(),
                                                        passingError(std::move(completion)));
}

void VIRLOAdServerAPI::submitDataForItemWithCompletion(const JSON& data, const VIRLOAdItem& item,
                                                       ErrorCompletion completion)
{
    sessionPOSTwithDicitonaryToURLWithCompletionHandler(data, item.clickURL(),
                                                        passingError(std::move(completion)));
}

void VIRLOAdServerAPI::registerAppWithCompletion(ErrorCompletion completion)
{
    sessionPOSTwithDicitonaryToURLWithCompletionHandler(deviceDataDictionary(),
                                                        identifiedURL("app/inst", appIdentifier()),
                                                        passingError(std::move(completion)));
}

void VIRLOAdServerAPI::registerUsernameForVirtualCurrencyWithCompletion(const std::string& userId,
                                                                        ErrorCompletion completion)
{
    checkSessionAndDo([weak = weak_from_this(), userId, completion = std::move(completion)] {
        if (const auto self = weak.lock())
            self->sessionPUTwithDicitonaryToURLWithCompletionHandler(
                JSON{{"thirdPartyUserId", userId}}, self->sessionURL(), passingError(completion));
    });
}

void VIRLOAdServerAPI::checkAvailableCurrencyForURLWithCompletion(const virlo::URL& url,
                                                                  CurrencyCompletion completion)
{
    checkSessionAndDo([weak = weak_from_this(), url, completion = std::move(completion)] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->sessionGETtoURLWithCompletionHandler(
            url,
            [completion](const std::optional<JSON>& payload, const OptionalError& error, const Response&) {
                if (payload)
                    completion(virlo::JSONReading::boolean(*payload, "status"), payload, std::nullopt);
                else
                    completion(false, std::nullopt, error);
            });
    });
}

void VIRLOAdServerAPI::reportCurrentPlacement(const std::string& placement)
{
    checkSessionAndDo([weak = weak_from_this(), placement] {
        if (const auto self = weak.lock())
            self->sessionPUTwithDicitonaryToURLWithCompletionHandler(JSON{{"currentPlacement", placement}},
                                                                     self->sessionURL(), {});
    });
}

void VIRLOAdServerAPI::initiateAppDownloadByURLWithCompletion(const std::optional<virlo::URL>& url,
                                                              URLCompletion completion)
{
    sessionGETtoURLWithCompletionHandler(url, [completion = std::move(completion)](const std::optional<JSON>&,
                                                                                   const OptionalError& error,
                                                                                   const Response& response) {
        completion(response ? std::optional(response->url) : std::nullopt, error);
    });
}

bool VIRLOAdServerAPI::addCompletionHandlerForAdvertisementUpdate(MoreItemsCompletion handler,
                                                                  const VIRLOAdvertisement& advertisement)
{
    auto& table = m_completionHandlersForAdvertisementUpdate;
    return table.add(table.key(advertisement.txId(), &advertisement), std::move(handler));
}

std::vector<VIRLOAdServerAPI::MoreItemsCompletion>
VIRLOAdServerAPI::completionHandlersForAdvertisementUpdate(const VIRLOAdvertisement& advertisement)
{
    auto& table = m_completionHandlersForAdvertisementUpdate;
    return table.handlers(table.key(advertisement.txId(), &advertisement));
}

void VIRLOAdServerAPI::removeCompletionHandlersForAdvertisementUpdate(const VIRLOAdvertisement& advertisement)
{
    auto& table = m_completionHandlersForAdvertisementUpdate;
    table.remove(table.key(advertisement.txId(), &advertisement));
}
