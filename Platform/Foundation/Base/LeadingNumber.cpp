#include "LeadingNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace virlo::LeadingNumber
{

namespace
{

struct Signed {
    bool negative;
    std::string_view digits;
};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

Signed withoutSign(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    return {negative, text};
}

std::uint64_t magnitude(std::string_view digits)
{
    std::uint64_t value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max() : value;
}

} // namespace

std::int64_t integer(std::string_view text)
{
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const auto [negative, digits] = withoutSign(text);
    const auto value = magnitude(digits);
    if (negative)
        return value > largest ? std::numeric_limits<std::int64_t>::min() : -static_cast<std::int64_t>(value);
    return static_cast<std::int64_t>(std::min(value, largest));
}

std::uint64_t unsignedInteger(std::string_view text)
{
    const auto [negative, digits] = withoutSign(text);
    return negative ? 0 : magnitude(digits);
}

double decimal(std::string_view text)
{
    const auto [negative, digits] = withoutSign(text);
    const bool begins = !digits.empty() &&
                        (isDigit(digits[0]) || (digits.size() > 1 && digits[0] == '.' && isDigit(digits[1])));
    if (!begins)
        return 0;
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc() || !std::isfinite(value))
        return 0;
    return negative ? -value : value;
}

std::int64_t integer(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 0x1p63)
        return std::numeric_limits<std::int64_t>::max();
    return value < -0x1p63 ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(value);
}

std::uint64_t unsignedInteger(double value)
{
    if (std::isnan(value) || value <= 0)
        return 0;
    return value >= 0x1p64 ? std::numeric_limits<std::uint64_t>::max() : static_cast<std::uint64_t>(value);
}

} // namespace virlo::LeadingNumber
