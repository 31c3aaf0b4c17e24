#include "CampaignReader.h"

#include "JSONChecker.h"
#include "JSONText.h"
#include "URLText.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <stdexcept>
#include <string_view>

namespace adserver
{

namespace
{

using Check = std::function<void(const JSONChecker&)>;

constexpr double largestWhole = 4'294'967'295.0;

class CampaignReader
{
public:
    CampaignReader(std::string name, const std::filesystem::path& folder)
    {
        m_campaign.name = std::move(name);
        m_campaign.folder = folder;
    }

    Campaign read(const nlohmann::json& file)
    {
        const JSONChecker checker(file);
        [[maybe_unused]] const auto rules = checker.required("rules");
        [[maybe_unused]] const auto advertisement = checker.required("advertisement");
        checker.checkMembers({{"about", text},
                              {"rules", [this](const auto& value) { readRules(value); }},
                              {"advertisement", [this](const auto& value) { readAdvertisement(value); }},
                              {"morePages", [this](const auto& value) { readPages(value); }},
                              {"generatedItems", skip},
                              {"faults", [this](const auto& value) { readFaults(value); }},
                              {"rewards", skip}});
        if (const auto generated = file.find("generatedItems"); generated != file.end())
            readGeneratedItems(JSONChecker(*generated, "generatedItems"));
        if (const auto rewards = file.find("rewards"); rewards != file.end())
            readRewards(JSONChecker(*rewards, "rewards"));
        return std::move(m_campaign);
    }

private:
    static void text(const JSONChecker& value) { [[maybe_unused]] const auto read = value.text(); }

    static void skip(const JSONChecker&) {}

    static Check number(double least, double most)
    {
        return [least, most](const JSONChecker& value) { value.numberOrText(least, most); };
    }

    void readRules(const JSONChecker& rules)
    {
        rules.eachElement([this](const JSONChecker& element) {
            Campaign::Rule rule;
            rule.placement = element.required("placement").nonEmptyText();
            element.checkMembers({{"placement", text}, {"type", [&rule](const JSONChecker& value) {
                                                            rule.type = advertisementType(value);
                                                        }}});
            m_campaign.rules.push_back(rule);
        });
        if (m_campaign.rules.empty())
            rules.fail("must have at least one rule");
    }

    void readAdvertisement(const JSONChecker& advertisement)
    {
        auto served = advertisement.value();
        advertisement.checkMembers(
            {{"txid", text},
             {"timestamp", text},
             {"validUntil", text},
             {"validFor",
              [this](const JSONChecker& value) {
                  m_campaign.validFor = std::chrono::seconds(value.wholeNumber(315'360'000));
              }},
             {"type",
              [](const JSONChecker& value) { [[maybe_unused]] const auto read = advertisementType(value); }},
             {"secondsToSkip", number(0, 3600)},
             {"moreAdsUrl", [this](const JSONChecker& value) { checkAddress(value, false); }},
             {"ads", [this](const JSONChecker& value) { checkItems(value); }}});
        served.erase("validFor");
        m_campaign.advertisement = std::move(served);
    }

    void readPages(const JSONChecker& pages)
    {
        pages.eachElement([this](const JSONChecker& page) {
            page.checkMembers(
                {{"moreAdsUrl", [this](const JSONChecker& value) { checkAddress(value, false); }},
                 {"ads", [this](const JSONChecker& value) { checkItems(value); }}});
            m_campaign.morePages.push_back(page.value());
        });
    }

    void readGeneratedItems(const JSONChecker& generated)
    {
        m_campaign.generatedItems = generated.required("count").wholeNumber(1'000'000);
        m_campaign.itemsPerPage = generated.required("perPage").wholeNumber(10'000);
        generated.checkMembers({{"count", skip}, {"perPage", skip}});
        if (m_campaign.itemsPerPage == 0)
            generated.fail("must have at least one item on a page");
        if (m_campaign.advertisement.value("ads", nlohmann::json::array()).empty())
            generated.fail("needs items of the advertisement to go by");
    }

    void readRewards(const JSONChecker& rewards)
    {
        rewards.eachMember([this](const std::string& cid, const JSONChecker& reward) {
            const auto* item = m_campaign.item(cid);
            if (!item)
                reward.fail("is the \"cid\" of no item");
            if (textAt(*item, "pollingUrl").empty())
                reward.fail("the item has no \"pollingUrl\"");
            const auto seconds = reward.required("secondsAfterClick").number(0, 86400);
            reward.checkMembers({{"secondsAfterClick", skip}});
            m_campaign.rewards[cid] = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
        });
    }

    void readFaults(const JSONChecker& faults)
    {
        faults.eachElement([this](const JSONChecker& fault) {
            try {
                m_campaign.faults.push_back(AdServerFault::fromJSON(fault.value()));
            } catch (const std::invalid_argument& error) {
                fault.fail(error.what());
            }
        });
    }

    void checkItems(const JSONChecker& items)
    {
        items.eachElement([this](const JSONChecker& item) { checkItem(item); });
    }

    void checkItem(const JSONChecker& item)
    {
        const Check link = [this](const JSONChecker& value) { checkAddress(value, false); };
        const Check file = [this](const JSONChecker& value) { checkAddress(value, true); };
        const auto files = [file](const JSONChecker& value) { value.eachElement(file); };
        const auto type = [](const JSONChecker& value) {
            [[maybe_unused]] const auto read = value.oneOf({"appstore", "content", "email", "call", "sms"});
        };
        const auto button = [](const JSONChecker& value) { checkButton(value); };
        item.checkMembers(
            {{"cid", [](const JSONChecker& value) { [[maybe_unused]] auto cid = value.nonEmptyText(); }},
             {"type", type},
             {"title", text},
             {"category", text},
             {"description", text},
             {"actionButton", button},
             {"price", text},
             {"impressionUrl", link},
             {"clickUrl", link},
             {"clickFallback", link},
             {"clickTracker", link},
             {"backgroundUrl", file},
             {"screenshots", files},
             {"currencyAmount", number(0, largestWhole)},
             {"currencyType", text},
             {"rating", number(0, 5)},
             {"reviews", number(0, 2'147'483'647.0)},
             {"markupUrl", file},
             {"pollingUrl", link}});
    }

    static void checkButton(const JSONChecker& button)
    {
        const auto type = [](const JSONChecker& value) {
            [[maybe_unused]] const auto read = value.oneOf(
                {"CLICK_TO_APPSTORE", "CLICK_TO_CONTENT", "CLICK_TO_EMAIL", "CLICK_TO_CALL", "CLICK_TO_SMS"});
        };
        const auto component = number(0, 255);
        button.checkMembers({{"actionType", type},
                             {"text", text},
                             {"textRed", component},
                             {"textGreen", component},
                             {"textBlue", component},
                             {"backgroundRed", component},
                             {"backgroundGreen", component},
                             {"backgroundBlue", component},
                             {"xPosition", number(0, 1920)},
                             {"yPosition", number(0, 1080)}});
    }

    static std::string advertisementType(const JSONChecker& value)
    {
        return value.oneOf(
            {"any", "discovery", "interstitial", "video", "featured", "engagement", "recommendation"});
    }

    void checkAddress(const JSONChecker& value, bool mustExist)
    {
        const auto address = value.nonEmptyText();
        if (std::any_of(address.begin(), address.end(),
                        [](unsigned char letter) { return letter <= ' ' || letter == 127; }))
            value.fail("must be an address without spaces");
        constexpr std::string_view documents = "/vast/";
        const bool isDocument = address.starts_with(documents);
        if (!mustExist || isAbsoluteURL(address) || (address.starts_with('/') && !isDocument))
            return;
        auto file = m_campaign.folder / address;
        if (isDocument) {
            const auto end = address.find_first_of("/?#", documents.size());
            file = m_campaign.folder / "vast" /
                   (address.substr(documents.size(), end - documents.size()) + ".xml");
        }
        if (!std::filesystem::is_regular_file(file))
            value.fail("there is no file " + file.string());
    }

    Campaign m_campaign;
};

} // namespace

std::shared_ptr<const Campaign> readCampaign(const std::string& name, const std::string& text,
                                             const std::filesystem::path& folder)
{
    return std::make_shared<const Campaign>(CampaignReader(name, folder).read(parseJSON(text)));
}

} // namespace adserver
