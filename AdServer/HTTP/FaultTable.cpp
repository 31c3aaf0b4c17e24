#include "FaultTable.h"

#include <algorithm>
#include <fnmatch.h>

namespace adserver
{

namespace
{

bool fits(const AdServerFault& fault, const std::string& method, const std::string& path)
{
    return (fault.method.empty() || fault.method == method) &&
           ::fnmatch(fault.path.c_str(), path.c_str(), FNM_NOESCAPE) == 0;
}

} // namespace

void FaultTable::set(const AdServerFault& fault)
{
    {
        const std::lock_guard lock(m_mutex);
        m_set.insert(m_set.begin(), {++m_lastNumber, fault});
    }
    tell();
}

void FaultTable::replaceCampaignFaults(const std::vector<AdServerFault>& faults)
{
    {
        const std::lock_guard lock(m_mutex);
        m_fromCampaigns.clear();
        for (const auto& fault : faults)
            m_fromCampaigns.push_back({++m_lastNumber, fault});
    }
    tell();
}

void FaultTable::clear()
{
    {
        const std::lock_guard lock(m_mutex);
        m_set.clear();
        m_fromCampaigns.clear();
    }
    tell();
}

bool FaultTable::remove(std::uint64_t number)
{
    const auto isIt = [number](const Numbered& entry) { return entry.number == number; };
    {
        const std::lock_guard lock(m_mutex);
        if (std::erase_if(m_set, isIt) + std::erase_if(m_fromCampaigns, isIt) == 0)
            return false;
    }
    tell();
    return true;
}

std::vector<FaultTable::Numbered> FaultTable::list() const
{
    const std::lock_guard lock(m_mutex);
    auto all = m_set;
    all.insert(all.end(), m_fromCampaigns.begin(), m_fromCampaigns.end());
    return all;
}

std::optional<AdServerFault> FaultTable::take(const std::string& method, const std::string& path)
{
    std::optional<AdServerFault> taken;
    {
        const std::lock_guard lock(m_mutex);
        for (auto* faults : {&m_set, &m_fromCampaigns}) {
            const auto found = std::find_if(faults->begin(), faults->end(), [&](const auto& entry) {
                return fits(entry.fault, method, path);
            });
            if (found == faults->end())
                continue;
            taken = found->fault;
            if (taken->times > 0 && --found->fault.times == 0)
                faults->erase(found);
            break;
        }
    }
    if (taken && taken->times > 0)
        tell();
    return taken;
}

void FaultTable::tell() const
{
    if (m_changed)
        m_changed();
}

} // namespace adserver
