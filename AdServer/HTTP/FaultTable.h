#pragma once

#include "AdServerFault.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace adserver
{

/// The faults in force. Safe from any thread.
class FaultTable
{
public:
    /// Puts it before all others.
    void set(const AdServerFault& fault);
    /// These come after all that were set, in place of what came from campaigns before.
    void replaceCampaignFaults(std::vector<AdServerFault> faults);
    /// Of both kinds.
    void clear();

    /// The first that fits, counted down.
    [[nodiscard]] std::optional<AdServerFault> take(const std::string& method, const std::string& path);

private:
    std::mutex m_mutex;
    std::vector<AdServerFault> m_set;
    std::vector<AdServerFault> m_fromCampaigns;
};

} // namespace adserver
