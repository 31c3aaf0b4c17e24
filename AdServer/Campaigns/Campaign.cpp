#include "Campaign.h"

#include "JSONText.h"
#include "URLText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace adserver
{

namespace
{

constexpr std::array addressKeys{"impressionUrl", "clickUrl",  "clickFallback", "clickTracker",
                                 "backgroundUrl", "markupUrl", "pollingUrl"};

/// Makes the addresses of one item or page what clients can use.
class AddressFinisher
{
public:
    AddressFinisher(const std::string& txid, const std::string& origin) : m_txid(txid), m_origin(origin) {}

    void finish(nlohmann::json& holder, const char* key, const std::string& cid) const
    {
        if (const auto found = holder.find(key); found != holder.end())
            finish(*found, cid);
    }

    void finishItems(nlohmann::json& holder) const
    {
        const auto items = holder.find("ads");
        if (items == holder.end())
            return;
        for (auto& item : *items) {
            const auto cid = textAt(item, "cid");
            for (const auto* key : addressKeys)
                finish(item, key, cid);
            if (const auto screenshots = item.find("screenshots"); screenshots != item.end())
                for (auto& screenshot : *screenshots)
                    finish(screenshot, cid);
        }
    }

private:
    void finish(nlohmann::json& value, const std::string& cid) const
    {
        if (!value.is_string())
            return;
        auto address = value.get<std::string>();
        fillIn(address, "{txid}", percentEncoded(m_txid));
        fillIn(address, "{cid}", percentEncoded(cid));
        value = absoluteURL(address, m_origin, campaignFilesPath);
    }

    const std::string& m_txid;
    const std::string& m_origin;
};

void setUnlessSaid(nlohmann::json& object, const char* key, std::string value)
{
    if (!object.contains(key))
        object[key] = std::move(value);
}

const nlohmann::json* itemIn(const nlohmann::json& holder, const std::string& cid)
{
    const auto items = holder.find("ads");
    if (items == holder.end())
        return nullptr;
    const auto found = std::find_if(items->begin(), items->end(),
                                    [&](const auto& item) { return textAt(item, "cid") == cid; });
    return found == items->end() ? nullptr : &*found;
}

} // namespace

bool Campaign::fits(const Rule& rule, const std::string& placement, const std::string& type) const
{
    if (rule.placement != "*" && rule.placement != placement)
        return false;
    if (!rule.type.empty())
        return rule.type == type;
    return type.empty() || type == textAt(advertisement, "type");
}

const nlohmann::json* Campaign::item(const std::string& cid) const
{
    if (generatedItems != 0)
        return itemIn(advertisement, cid.substr(0, cid.rfind('-')));
    const auto* found = itemIn(advertisement, cid);
    for (auto page = morePages.begin(); !found && page != morePages.end(); ++page)
        found = itemIn(*page, cid);
    return found;
}

nlohmann::json Campaign::generatedPage(std::size_t number) const
{
    const auto& models = advertisement.at("ads");
    auto served = nlohmann::json{{"ads", nlohmann::json::array()}};
    const auto end = std::min(generatedItems, (number + 1) * itemsPerPage);
    for (auto index = number * itemsPerPage; index < end; ++index) {
        auto item = models.at(index % models.size());
        const auto ordinal = std::to_string(index + 1);
        item["cid"] = textAt(item, "cid") + '-' + ordinal;
        item["title"] = textAt(item, "title") + ' ' + ordinal;
        served["ads"].push_back(std::move(item));
    }
    if (end < generatedItems)
        served["moreAdsUrl"] = "/ad/more/{txid}/" + std::to_string(number + 1);
    return served;
}

nlohmann::json Campaign::response(const std::string& txid, const std::string& origin, TimePoint now) const
{
    auto served = advertisement;
    if (generatedItems != 0)
        served.update(generatedPage(0));
    setUnlessSaid(served, "txid", txid);
    setUnlessSaid(served, "timestamp", advertisementDate(now));
    setUnlessSaid(served, "validUntil", advertisementDate(now + validFor));
    const AddressFinisher finisher(txid, origin);
    finisher.finish(served, "moreAdsUrl", {});
    finisher.finishItems(served);
    return served;
}

std::optional<nlohmann::json> Campaign::page(std::size_t number, const std::string& txid,
                                             const std::string& origin) const
{
    const auto pages = generatedItems != 0 ? (generatedItems - 1) / itemsPerPage : morePages.size();
    if (number == 0 || number > pages)
        return std::nullopt;
    auto served = generatedItems != 0 ? generatedPage(number) : morePages[number - 1];
    const AddressFinisher finisher(txid, origin);
    finisher.finish(served, "moreAdsUrl", {});
    finisher.finishItems(served);
    return served;
}

} // namespace adserver
