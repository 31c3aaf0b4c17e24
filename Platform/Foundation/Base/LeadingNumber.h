#pragma once

#include <cstdint>
#include <string_view>

namespace virlo::LeadingNumber
{

// What stands as a number at the beginning of a text, after white space and a sign where there are such; 0
// where nothing does. Independent of the locale; out of range clamps, and nothing is ever NaN or infinite.

[[nodiscard]] std::int64_t integer(std::string_view text);
[[nodiscard]] std::uint64_t unsignedInteger(std::string_view text);
/// Decimal, with a fraction and an exponent.
[[nodiscard]] double decimal(std::string_view text);

// The same bounds for a number that is one already.
[[nodiscard]] std::int64_t integer(double value);
[[nodiscard]] std::uint64_t unsignedInteger(double value);

} // namespace virlo::LeadingNumber
