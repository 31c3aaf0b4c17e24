#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace virlo
{

using JSON = nlohmann::json;
struct Error;

/// JSON text to and from values. Safe on hostile input: nesting beyond `maximumDepth`, more than
/// `maximumValues` values, invalid UTF-8, numbers out of range and trailing text are errors of domain
/// `errorDomain` (userInfo "Reason"), never exceptions. Of a key that comes twice the last value counts. Any
/// thread.
namespace JSONSerialization
{
inline constexpr int maximumDepth = 512;
/// What a body of commas may make of the memory: some 100 MB at most.
inline constexpr std::size_t maximumValues = 1'000'000;
inline constexpr const char* errorDomain = "com.virlohq.error.json";

[[nodiscard]] std::variant<JSON, Error> objectWithData(std::string_view text);
/// An error where the value holds text that is not UTF-8.
[[nodiscard]] std::variant<std::string, Error> dataWithObject(const JSON& object);
} // namespace JSONSerialization

/// Lenient readings of one key of an object: a key that is missing, null or of another shape reads as absent
/// (or 0), whatever `object` is. They never throw.
namespace JSONReading
{
/// The value's own text; a number or boolean is absent.
[[nodiscard]] std::optional<std::string> string(const JSON& object, const char* key);
/// The key's text, or a number's or boolean's shortest decimal form ("4", "4.5", "1").
[[nodiscard]] std::optional<std::string> text(const JSON& object, const char* key);
/// A number (its fraction dropped), a boolean, or text: leading decimal digits, after white space and a sign
/// where there are such. Out of range clamps, anything else is 0.
[[nodiscard]] std::int64_t integer(const JSON& object, const char* key);
[[nodiscard]] std::uint64_t unsignedInteger(const JSON& object, const char* key);
/// As `integer`, with a fraction and exponent; never NaN or infinite.
[[nodiscard]] double number(const JSON& object, const char* key);
/// A boolean, a number other than 0, or text that begins with Y, T (in either case) or a number other than 0.
[[nodiscard]] bool boolean(const JSON& object, const char* key);
/// The key's array, or an empty one.
[[nodiscard]] const JSON& array(const JSON& object, const char* key);
/// Whether the key is there and not null.
[[nodiscard]] bool has(const JSON& object, const char* key);
} // namespace JSONReading

} // namespace virlo
