#include "VIRLOAdItem.h"

#include "JSONReading.h"
#include "VIRLOAdFrameworkLogger.h"

#include <algorithm>
#include <limits>

using virlo::JSON;
using virlo::URL;
namespace JSONReading = virlo::JSONReading;

namespace
{
std::optional<URL> url(const JSON& dictionary, const char* key)
{
    const auto text = JSONReading::string(dictionary, key);
    return text ? URL::fromString(*text) : std::nullopt;
}

std::vector<URL> urls(const JSON& array)
{
    std::vector<URL> result;
    for (const JSON& element : array) {
        if (!element.is_string())
            continue;
        if (auto parsed = URL::fromString(element.get_ref<const std::string&>()))
            result.push_back(std::move(*parsed));
    }
    return result;
}

std::int32_t int32(const JSON& dictionary, const char* key)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(JSONReading::integer(dictionary, key), Limits::min(), Limits::max()));
}
} // namespace

VIRLOAdItem::VIRLOAdItem(const JSON& dictionary)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Ad Item Dictionary: %@", dictionary);

    m_identifier = JSONReading::string(dictionary, "cid");
    m_title = JSONReading::string(dictionary, "title");
    m_text = JSONReading::string(dictionary, "description");
    m_category = JSONReading::string(dictionary, "category");
    m_type = itemTypeFromString(JSONReading::string(dictionary, "type"));
    m_price = JSONReading::text(dictionary, "price");
    m_rating = JSONReading::floatNumber(dictionary, "rating");
    m_numberOfRatings = int32(dictionary, "reviews");
    m_currencyAmount = JSONReading::unsignedInteger(dictionary, "currencyAmount");
    m_currencyType = JSONReading::string(dictionary, "currencyType");
    m_backgroundURL = url(dictionary, "backgroundUrl");
    m_clickURL = url(dictionary, "clickUrl");
    m_clickTracker = url(dictionary, "clickTracker");
    m_clickFallback = url(dictionary, "clickFallback");
    m_impressionURL = url(dictionary, "impressionUrl");
    m_activationCheckURL = url(dictionary, "pollingUrl");
    m_screenshotsURLs = urls(JSONReading::array(dictionary, "screenshots"));
    if (dictionary.is_object()) {
        const auto button = dictionary.find("actionButton");
        if (button != dictionary.end() && button->is_object())
            m_actionButton = VIRLOActionButton::initWithDictionary(*button);
    }
    m_markupURL = url(dictionary, "markupUrl");
}

std::shared_ptr<VIRLOAdItem> VIRLOAdItem::initWithDictionary(const JSON& dictionary)
{
    return std::shared_ptr<VIRLOAdItem>(new VIRLOAdItem(dictionary));
}

VIRLOAdItemType VIRLOAdItem::itemTypeFromString(const std::optional<std::string>& text) const
{
    if (text == "appstore")
        return VIRLOAdItemType::AppStore;
    if (text == "content")
        return VIRLOAdItemType::Content;
    if (text == "email")
        return VIRLOAdItemType::Email;
    if (text == "call")
        return VIRLOAdItemType::Call;
    if (text == "sms")
        return VIRLOAdItemType::SMS;
    return VIRLOAdItemType::Unknown;
}

bool VIRLOAdItem::isEqual(const VIRLOAdItem& other) const
{
    return m_identifier && m_identifier == other.m_identifier;
}

std::size_t VIRLOAdItem::hash() const
{
    return m_identifier ? std::hash<std::string>{}(*m_identifier) : 0;
}

std::string VIRLOAdItem::description() const
{
    return virlo::format("<VIRLOAdItem: aid=%@ title=%@>", m_identifier, m_title);
}
