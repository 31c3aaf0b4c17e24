#include "VIRLOAdvertisement.h"

#include "JSONReading.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOTimestamp.h"

#include <array>
#include <functional>
#include <string_view>
#include <typeinfo>
#include <utility>

using virlo::JSON;
namespace JSONReading = virlo::JSONReading;

namespace
{
constexpr const char* dateFormat = "E MMM dd HH:mm:ss zzz yyyy";

// Both discovery types have the same name, which reads as the first of them.
constexpr std::array<std::string_view, 8> typeNames = {"any",   "discovery", "discovery",  "interstitial",
                                                       "video", "featured",  "engagement", "recommendation"};

std::optional<virlo::Date> dateIn(const virlo::DateFormatter& formatter, const JSON& dictionary,
                                  const char* key)
{
    const auto text = JSONReading::string(dictionary, key);
    return text ? formatter.dateFromString(*text) : std::nullopt;
}

std::optional<virlo::URL> moreItemsURLIn(const JSON& dictionary)
{
    const auto text = JSONReading::string(dictionary, "moreAdsUrl");
    return text ? virlo::URL::fromString(*text) : std::nullopt;
}
} // namespace

VIRLOAdvertisement::VIRLOAdvertisement(const JSON& dictionary)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Advertisement Dictionary: %@", dictionary);

    m_txId = JSONReading::string(dictionary, "txid");
    const auto formatter = VIRLOTimestamp::VIRLO_cachedFormatterForDateFormat(dateFormat);
    m_date = dateIn(*formatter, dictionary, "timestamp");
    m_validUntil = dateIn(*formatter, dictionary, "validUntil");
    m_type = typeByString(JSONReading::string(dictionary, "type"));
    m_moreItemsURL = moreItemsURLIn(dictionary);
    m_secondsToSkip = JSONReading::unsignedInteger(dictionary, "secondsToSkip");
    addItemsFromArray(JSONReading::array(dictionary, "ads"));
}

std::shared_ptr<VIRLOAdvertisement> VIRLOAdvertisement::initWithDictionary(const JSON& dictionary)
{
    return std::shared_ptr<VIRLOAdvertisement>(new VIRLOAdvertisement(dictionary));
}

void VIRLOAdvertisement::updateWithDictionary(const JSON& dictionary)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Update Advertisement Dictionary: %@", dictionary);
    setMoreItemsURL(moreItemsURLIn(dictionary));
    addItemsFromArray(JSONReading::array(dictionary, "ads"));
}

void VIRLOAdvertisement::addItemsFromArray(const JSON& array)
{
    if (!array.is_array())
        return;
    Items items;
    for (const JSON& element : array) {
        if (element.is_object())
            items.push_back(VIRLOAdItem::initWithDictionary(element));
    }
    addItemsFromArray(items);
}

void VIRLOAdvertisement::addItemsFromArray(const Items& items)
{
    const std::lock_guard lock(m_mutex);
    m_mutableItems.insert(m_mutableItems.end(), items.begin(), items.end());
}

VIRLOAdvertisement::Items VIRLOAdvertisement::items() const
{
    return mutableItems();
}

VIRLOAdvertisement::Items VIRLOAdvertisement::mutableItems() const
{
    const std::lock_guard lock(m_mutex);
    return m_mutableItems;
}

std::size_t VIRLOAdvertisement::numberOfItems() const
{
    const std::lock_guard lock(m_mutex);
    return m_mutableItems.size();
}

std::optional<virlo::URL> VIRLOAdvertisement::moreItemsURL() const
{
    const std::lock_guard lock(m_mutex);
    return m_moreItemsURL;
}

void VIRLOAdvertisement::setMoreItemsURL(std::optional<virlo::URL> url)
{
    const std::lock_guard lock(m_mutex);
    m_moreItemsURL = std::move(url);
}

bool VIRLOAdvertisement::isEqual(const VIRLOAdvertisement& other) const
{
    // Unlike with items, an instance of a subclass is never equal.
    return typeid(*this) == typeid(other) && m_txId && m_txId == other.m_txId;
}

std::size_t VIRLOAdvertisement::hash() const
{
    return m_txId ? std::hash<std::string>{}(*m_txId) : 0;
}

std::string VIRLOAdvertisement::description() const
{
    return virlo::format("<VIRLOAdvertisement: txId=%@ (%@) numberOfItems=%lu>", m_txId, m_date,
                         numberOfItems());
}

VIRLOAdvertisementType VIRLOAdvertisement::typeByString(const std::optional<std::string>& text)
{
    if (text) {
        for (std::uint64_t value = 0; value < typeNames.size(); ++value) {
            if (*text == typeNames[value])
                return VIRLOAdvertisementType{value};
        }
    }
    return VIRLOAdvertisementType::Any;
}

std::optional<std::string> VIRLOAdvertisement::stringByType(VIRLOAdvertisementType type)
{
    const auto value = static_cast<std::uint64_t>(type);
    return value < typeNames.size() ? std::optional(std::string(typeNames[value])) : std::nullopt;
}
