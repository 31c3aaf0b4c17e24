#include "CampaignCatalogue.h"

#include "CampaignReader.h"
#include "JSONText.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace adserver
{

namespace
{

/// A client that makes placements up must not fill the memory.
constexpr std::size_t mostTurns = 1000;
constexpr std::uintmax_t largestCampaignFile = 4U << 20U;

std::vector<std::filesystem::path> campaignFiles(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    try {
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".json")
                files.push_back(entry.path());
    } catch (const std::filesystem::filesystem_error& error) {
        throw std::runtime_error("cannot read the campaigns folder " + folder.string() + ": " +
                                 error.code().message());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string contents(const std::filesystem::path& file)
{
    std::error_code failure;
    const auto size = std::filesystem::file_size(file, failure);
    if (failure || size > largestCampaignFile)
        throw std::invalid_argument(failure ? failure.message() : "is larger than 4 MiB");
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::invalid_argument("cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

void CampaignCatalogue::read(const std::filesystem::path& folder)
{
    Campaigns campaigns;
    std::vector<std::string> errors;
    if (!folder.empty()) {
        for (const auto& file : campaignFiles(folder)) {
            try {
                campaigns.push_back(readCampaign(file.filename().string(), contents(file), folder));
            } catch (const std::invalid_argument& error) {
                errors.push_back(file.string() + ": " + error.what());
            }
        }
    }
    const std::lock_guard lock(m_mutex);
    m_folder = folder;
    m_read = std::move(campaigns);
    m_errors = std::move(errors);
    m_turns.clear();
}

void CampaignCatalogue::add(const std::shared_ptr<const Campaign>& campaign)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_added, [&](const auto& other) { return other->name == campaign->name; });
    m_added.push_back(campaign);
}

std::shared_ptr<const Campaign> CampaignCatalogue::choose(const std::string& placement,
                                                          const std::string& type)
{
    const std::lock_guard lock(m_mutex);
    for (const auto& at : {placement, std::string("*")})
        if (const auto next = m_next.extract(at))
            return next.mapped();
    auto candidates = bestOf(m_added, placement, type);
    if (candidates.empty())
        candidates = bestOf(m_read, placement, type);
    if (candidates.empty())
        return nullptr;
    if (m_turns.size() >= mostTurns)
        m_turns.clear();
    return candidates[m_turns[{placement, type}]++ % candidates.size()];
}

CampaignCatalogue::Campaigns CampaignCatalogue::bestOf(const Campaigns& campaigns,
                                                       const std::string& placement, const std::string& type)
{
    Campaigns exact;
    Campaigns general;
    for (const auto& campaign : campaigns) {
        const auto fitting = [&](const Campaign::Rule& rule) {
            return campaign->fits(rule, placement, type);
        };
        const auto named = [&](const Campaign::Rule& rule) { return rule.placement != "*" && fitting(rule); };
        if (std::any_of(campaign->rules.begin(), campaign->rules.end(), named))
            exact.push_back(campaign);
        else if (std::any_of(campaign->rules.begin(), campaign->rules.end(), fitting))
            general.push_back(campaign);
    }
    return exact.empty() ? general : exact;
}

void CampaignCatalogue::restart()
{
    const std::lock_guard lock(m_mutex);
    m_turns.clear();
    m_next.clear();
}

bool CampaignCatalogue::serveNext(const std::string& placement, const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    if (name.empty()) {
        m_next.erase(placement);
        return true;
    }
    for (const auto* campaigns : {&m_added, &m_read})
        for (const auto& campaign : *campaigns)
            if (campaign->name == name && (m_next.size() < mostTurns || m_next.contains(placement))) {
                m_next[placement] = campaign;
                return true;
            }
    return false;
}

nlohmann::json CampaignCatalogue::describe() const
{
    const std::lock_guard lock(m_mutex);
    auto list = nlohmann::json::array();
    for (const auto* campaigns : {&m_added, &m_read})
        for (const auto& campaign : *campaigns) {
            auto placements = nlohmann::json::array();
            for (const auto& rule : campaign->rules)
                placements.push_back(rule.placement);
            auto nextAt = nlohmann::json::array();
            for (const auto& [placement, next] : m_next)
                if (next == campaign)
                    nextAt.push_back(placement);
            list.push_back({{"name", campaign->name},
                            {"type", textAt(campaign->advertisement, "type")},
                            {"placements", placements},
                            {"isNextAt", nextAt}});
        }
    return list;
}

std::optional<nlohmann::json> CampaignCatalogue::item(const std::string& cid) const
{
    const std::lock_guard lock(m_mutex);
    for (const auto* campaigns : {&m_added, &m_read})
        for (const auto& campaign : *campaigns)
            if (const auto* item = campaign->item(cid))
                return *item;
    return std::nullopt;
}

std::vector<std::filesystem::path> CampaignCatalogue::folders() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::filesystem::path> folders;
    for (const auto& campaign : m_added)
        if (!campaign->folder.empty())
            folders.push_back(campaign->folder);
    if (!m_folder.empty())
        folders.push_back(m_folder);
    return folders;
}

std::vector<std::string> CampaignCatalogue::errors() const
{
    const std::lock_guard lock(m_mutex);
    return m_errors;
}

std::vector<AdServerFault> CampaignCatalogue::faults() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<AdServerFault> faults;
    for (const auto* campaigns : {&m_added, &m_read})
        for (const auto& campaign : *campaigns)
            faults.insert(faults.end(), campaign->faults.begin(), campaign->faults.end());
    return faults;
}

} // namespace adserver
