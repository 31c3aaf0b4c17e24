#include "VIRLOTimestamp.h"

#include <map>
#include <mutex>
#include <utility>

namespace
{
using Formatter = std::shared_ptr<const virlo::DateFormatter>;

Formatter createFormatterWithFormat(const std::string& format)
{
    // Deliberate: no time zone is set. A quoted Z in a format is text, and the time is in the device's zone.
    return std::make_shared<virlo::DateFormatter>(format);
}
} // namespace

Formatter VIRLOTimestamp::VIRLO_cachedFormatterForDateFormat(const std::string& format)
{
    static auto& mutex = *new std::mutex;
    static auto& formatters = *new std::map<std::string, Formatter>;
    const std::lock_guard lock(mutex);
    const auto found = formatters.find(format);
    if (found != formatters.end())
        return found->second;
    return formatters.emplace(format, createFormatterWithFormat(format)).first->second;
}
