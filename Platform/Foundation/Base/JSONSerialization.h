#pragma once

#include "Error.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

namespace virlo
{

/// JSON text to and from values. Safe on hostile input: nesting deeper than `maximumDepth`, more than
/// `maximumValues` values, invalid UTF-8, numbers out of range and trailing text are errors of domain
/// `errorDomain` (userInfo "Reason"), never exceptions. If a key is repeated, the last value is used. Any
/// thread.
namespace JSONSerialization
{
inline constexpr int maximumDepth = 512;
/// Bounds the memory: this many empty objects take 24 MB, as items of an advertisement 200 MB.
inline constexpr std::size_t maximumValues = 250'000;
inline constexpr const char* errorDomain = "com.virlohq.error.json";

/// An object or an array; any other value at the top level is an error.
[[nodiscard]] std::variant<JSON, Error> objectWithData(std::string_view text);
/// An error if the value holds text that is not UTF-8.
[[nodiscard]] std::variant<std::string, Error> dataWithObject(const JSON& object);
} // namespace JSONSerialization

} // namespace virlo
