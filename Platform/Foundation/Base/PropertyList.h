#pragma once

#include "Clock.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// XML property lists whose root is a dictionary of dates, as text; reading and writing files is up to the
/// caller. Dates have a precision of one second. Any thread.
namespace PropertyList
{
[[nodiscard]] std::string xmlFromDates(const std::map<std::string, Date>& dates);
/// Entries that are not dates are skipped. Nothing for damaged text, for another root, for more than 16 MiB
/// and for more than 4096 containers.
[[nodiscard]] std::optional<std::map<std::string, Date>> datesFromXML(std::string_view xml);
} // namespace PropertyList

} // namespace virlo
