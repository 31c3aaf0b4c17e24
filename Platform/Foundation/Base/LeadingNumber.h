#pragma once

#include <cstdint>
#include <string_view>

namespace virlo::LeadingNumber
{

// The number that a text begins with, after optional white space and sign; 0 without one. Independent of the
// locale. Integers out of range are clamped.

[[nodiscard]] std::int64_t integer(std::string_view text);
[[nodiscard]] std::uint64_t unsignedInteger(std::string_view text);
/// Decimal, with a fraction and an exponent; 0 for a number that is no finite double.
[[nodiscard]] double decimal(std::string_view text);

// A floating-point number without its fraction; clamped, 0 for NaN.
[[nodiscard]] std::int64_t integer(double value);
[[nodiscard]] std::uint64_t unsignedInteger(double value);

} // namespace virlo::LeadingNumber
