#pragma once

#include "AdServerFault.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace adserver
{

/// The faults in force. Safe from any thread.
class FaultTable
{
public:
    struct Numbered {
        std::uint64_t number;
        AdServerFault fault;
    };

    /// Puts it before all others.
    void set(const AdServerFault& fault);
    /// These come after all that were set, in place of what came from campaigns before.
    void replaceCampaignFaults(const std::vector<AdServerFault>& faults);
    /// Of both kinds.
    void clear();
    /// False when no fault in force has that number.
    bool remove(std::uint64_t number);
    /// In the order in which they are asked; a number is never used again.
    [[nodiscard]] std::vector<Numbered> list() const;

    /// Called after each change, on the thread that made it. Set before the table is used.
    void setObserver(std::function<void()> changed) { m_changed = std::move(changed); }

    /// The first that fits, counted down.
    [[nodiscard]] std::optional<AdServerFault> take(const std::string& method, const std::string& path);

private:
    void tell() const;

    mutable std::mutex m_mutex;
    std::vector<Numbered> m_set;
    std::vector<Numbered> m_fromCampaigns;
    std::uint64_t m_lastNumber = 0;
    std::function<void()> m_changed;
};

} // namespace adserver
