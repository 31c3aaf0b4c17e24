#include "VASTDocument.h"

#include <string_view>

namespace adserver
{

const std::vector<std::string>& VASTDocument::allEvents()
{
    static const std::vector<std::string> events{
        "creativeView", "start", "firstQuartile", "midpoint", "thirdQuartile", "complete",       "pause",
        "resume",       "mute",  "unmute",        "close",    "fullscreen",    "exitFullscreen", "skip"};
    return events;
}

std::optional<std::string> documentNamedBy(const std::string& address)
{
    if (!address.starts_with(vastPath))
        return std::nullopt;
    const auto begin = std::string_view(vastPath).size();
    return address.substr(begin, address.find_first_of("/?#", begin) - begin);
}

} // namespace adserver
