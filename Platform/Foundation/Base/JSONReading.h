#pragma once

#include "JSON.h"

#include <cstdint>
#include <optional>
#include <string>

namespace virlo
{

/// Lenient reading of one key of an object: a key that is missing, null or of another type reads as absent
/// (or 0), and so does every key if `object` is not an object. Never throws. Any thread.
namespace JSONReading
{
/// A string value; a number or boolean reads as absent.
[[nodiscard]] std::optional<std::string> string(const JSON& object, const char* key);
/// A string value, or the shortest decimal form of a number or boolean ("4", "4.5", "1").
[[nodiscard]] std::optional<std::string> text(const JSON& object, const char* key);
/// A number without its fraction, a boolean, or the leading decimal digits of a string (after optional white
/// space and sign). Clamped to the type's range.
[[nodiscard]] std::int64_t integer(const JSON& object, const char* key);
[[nodiscard]] std::uint64_t unsignedInteger(const JSON& object, const char* key);
/// As `integer`, with fraction and exponent; never NaN or infinite.
[[nodiscard]] double number(const JSON& object, const char* key);
/// `number`, limited to what a float holds.
[[nodiscard]] float floatNumber(const JSON& object, const char* key);
/// A boolean, a number other than 0, or a string that begins with Y, T (in either case) or a number other
/// than 0.
[[nodiscard]] bool boolean(const JSON& object, const char* key);
/// The key's array, or an empty one.
[[nodiscard]] const JSON& array(const JSON& object, const char* key);
} // namespace JSONReading

} // namespace virlo
