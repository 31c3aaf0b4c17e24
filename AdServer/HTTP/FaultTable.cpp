#include "FaultTable.h"

#include <algorithm>
#include <fnmatch.h>
#include <utility>

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
    const std::lock_guard lock(m_mutex);
    m_set.insert(m_set.begin(), fault);
}

void FaultTable::replaceCampaignFaults(std::vector<AdServerFault> faults)
{
    const std::lock_guard lock(m_mutex);
    m_fromCampaigns = std::move(faults);
}

void FaultTable::clear()
{
    const std::lock_guard lock(m_mutex);
    m_set.clear();
    m_fromCampaigns.clear();
}

std::optional<AdServerFault> FaultTable::take(const std::string& method, const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    for (auto* faults : {&m_set, &m_fromCampaigns}) {
        const auto found = std::find_if(faults->begin(), faults->end(),
                                        [&](const auto& fault) { return fits(fault, method, path); });
        if (found == faults->end())
            continue;
        auto fault = *found;
        if (fault.times > 0 && --found->times == 0)
            faults->erase(found);
        return fault;
    }
    return std::nullopt;
}

} // namespace adserver
