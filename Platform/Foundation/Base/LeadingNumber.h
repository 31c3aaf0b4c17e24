#pragma once

#include <cstdint>
#include <string_view>

namespace virlo::LeadingNumber
{

// The number that a text begins with, after optional white space and sign; 0 without one. Independent of the
// locale. Values out of range are clamped, so no result is NaN or infinite.

[[nodiscard]] std::int64_t integer(std::string_view text);
[[nodiscard]] std::uint64_t unsignedInteger(std::string_view text);
/// Decimal, with a fraction and an exponent.
[[nodiscard]] double decimal(std::string_view text);

// The same clamping for a floating-point number.
[[nodiscard]] std::int64_t integer(double value);
[[nodiscard]] std::uint64_t unsignedInteger(double value);

} // namespace virlo::LeadingNumber
