#pragma once

#include "Clock.h"

#include <map>
#include <string>
#include <vector>

namespace virlo
{

/// Keyed archives: binary property lists in which every object is stored once and referred to by its index.
/// Written only; the library never reads one. Any thread.
namespace KeyedArchive
{
/// One object: its class name and its values by key.
struct Object {
    std::string className;
    std::map<std::string, std::string> strings;
    std::map<std::string, Date> dates;
};

/// An archive ("$archiver" is "NSKeyedArchiver") whose root is the ordered list of `objects`.
[[nodiscard]] std::string data(const std::vector<Object>& objects);
} // namespace KeyedArchive

} // namespace virlo
