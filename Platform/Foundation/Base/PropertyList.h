#pragma once

#include "Clock.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace virlo
{

/// Property lists, read and written as text or bytes; files are the caller's business. Damaged input reads as
/// nothing. Any thread.
namespace PropertyList
{
/// An XML property list whose root is a dictionary of dates.
[[nodiscard]] std::string xmlFromDates(const std::map<std::string, Date>& dates);
/// Either form; entries that are no dates are passed over.
[[nodiscard]] std::optional<std::map<std::string, Date>> datesFromData(std::string_view data);

/// One object of a keyed archive: its class name and its values by key.
struct ArchivedObject {
    std::string className;
    std::map<std::string, std::string> strings;
    std::map<std::string, Date> dates;

    friend bool operator==(const ArchivedObject&, const ArchivedObject&) = default;
};

/// A keyed archive (binary property list, "$archiver" "NSKeyedArchiver") whose root object is the ordered
/// list.
[[nodiscard]] std::string keyedArchive(const std::vector<ArchivedObject>& objects);
[[nodiscard]] std::optional<std::vector<ArchivedObject>> objectsFromKeyedArchive(std::string_view data);
} // namespace PropertyList

} // namespace virlo
