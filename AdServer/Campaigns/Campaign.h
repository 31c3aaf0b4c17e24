#pragma once

#include "AdServerFault.h"
#include "Dates.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace adserver
{

/// One campaign file as read and checked; never changes afterwards. What the file says is what is served:
/// only relative addresses become absolute, "{txid}" and "{cid}" in addresses are filled in, and what the
/// advertisement does not say of "txid", "timestamp" and "validUntil" is added.
struct Campaign {
    struct Rule {
        /// "*" fits every placement.
        std::string placement;
        /// Empty: the advertisement's own type, or none asked for.
        std::string type;
    };

    /// The file's name.
    std::string name;
    /// Where the files beside it lie.
    std::filesystem::path folder;
    std::vector<Rule> rules;
    nlohmann::json advertisement;
    /// Pages of more items: {"ads", "moreAdsUrl"}.
    std::vector<nlohmann::json> morePages;
    /// Where not 0, that many items are served in pages of `itemsPerPage`, made from those of the
    /// advertisement in turn:
    /// "-1", "-2" … is added to each "cid" and " 1", " 2" … to each "title".
    std::size_t generatedItems = 0;
    std::size_t itemsPerPage = 0;
    std::chrono::seconds validFor{3600};
    /// By "cid": how long after the click the reward is there.
    std::map<std::string, std::chrono::milliseconds> rewards;
    std::vector<AdServerFault> faults;

    [[nodiscard]] bool fits(const Rule& rule, const std::string& placement, const std::string& type) const;
    /// Null when no page has such an item.
    [[nodiscard]] const nlohmann::json* item(const std::string& cid) const;
    [[nodiscard]] nlohmann::json response(const std::string& txid, const std::string& origin,
                                          TimePoint now) const;
    /// `number` counts from 1; nothing when there is none.
    [[nodiscard]] std::optional<nlohmann::json> page(std::size_t number, const std::string& txid,
                                                     const std::string& origin) const;

private:
    /// The items of page `number`, which counts from 0, and where the next page is.
    [[nodiscard]] nlohmann::json generatedPage(std::size_t number) const;
};

/// Where the files beside campaigns are served.
inline constexpr auto campaignFilesPath = "/campaigns/";

} // namespace adserver
