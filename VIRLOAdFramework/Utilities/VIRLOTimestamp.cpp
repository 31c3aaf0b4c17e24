#include "VIRLOTimestamp.h"

#include <map>
#include <mutex>
#include <utility>

namespace
{
using Formatter = std::shared_ptr<const virlo::DateFormatter>;

Formatter createFormatterWithFormat(const std::string& format)
{
    // No zone is set: a literal Z in a pattern is mere text, and the time is read in the device's zone.
    auto formatter = std::make_shared<virlo::DateFormatter>(format);
    formatter->setLocale("en_US_POSIX");
    return formatter;
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
