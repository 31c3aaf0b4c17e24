#pragma once

#include "Campaign.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace adserver
{

/// All campaigns, and which of them is shown next. Safe from any thread.
///
/// A rule that names the placement beats "*"; campaigns that fit equally well take turns, by the order of
/// their file names. Campaigns that were added come before those of the folder.
class CampaignCatalogue
{
public:
    /// Reads every *.json of the folder, by name, in place of what it read before; an empty path reads
    /// nothing. Wrong ones are left out and named in `errors`. Throws std::runtime_error when the folder
    /// cannot be read.
    void read(const std::filesystem::path& folder);
    /// In place of one of that name that was added before.
    void add(const std::shared_ptr<const Campaign>& campaign);

    /// Null when none fits.
    [[nodiscard]] std::shared_ptr<const Campaign> choose(const std::string& placement,
                                                         const std::string& type);
    /// The next request at that placement ("*": at any) gets this campaign, whatever type it asks for. False
    /// when there is no campaign of that name. An empty name takes it back.
    [[nodiscard]] bool serveNext(const std::string& placement, const std::string& name);
    /// [{"name","type","placements","isNextAt"}]
    [[nodiscard]] nlohmann::json describe() const;
    /// Everybody's turn is the first again, and no campaign is the next one.
    void restart();
    /// The item of any campaign, for pages that are not bound to a transaction.
    [[nodiscard]] std::optional<nlohmann::json> item(const std::string& cid) const;
    [[nodiscard]] std::vector<std::filesystem::path> folders() const;
    [[nodiscard]] std::vector<std::string> errors() const;
    [[nodiscard]] std::vector<AdServerFault> faults() const;

private:
    using Campaigns = std::vector<std::shared_ptr<const Campaign>>;

    [[nodiscard]] static Campaigns bestOf(const Campaigns& campaigns, const std::string& placement,
                                          const std::string& type);

    mutable std::mutex m_mutex;
    std::filesystem::path m_folder;
    Campaigns m_added;
    Campaigns m_read;
    std::vector<std::string> m_errors;
    std::map<std::pair<std::string, std::string>, std::size_t> m_turns;
    /// By placement.
    std::map<std::string, std::shared_ptr<const Campaign>> m_next;
};

} // namespace adserver
