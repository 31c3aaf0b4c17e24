#include "ByteRange.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace adserver
{

namespace
{

std::optional<std::uint64_t> number(std::string_view digits)
{
    std::uint64_t value = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (failure != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

} // namespace

ByteRange readByteRange(const std::string& header, std::uint64_t size)
{
    constexpr std::string_view unit = "bytes=";
    const auto dash = header.find('-');
    if (!header.starts_with(unit) || dash == header.npos)
        return {};
    const auto from = std::string_view(header).substr(unit.size(), dash - unit.size());
    const auto to = std::string_view(header).substr(dash + 1);
    const auto first = number(from);
    const auto last = number(to);

    if (from.empty() && last) {
        if (*last == 0 || size == 0)
            return {.kind = ByteRange::Kind::outside};
        return {.kind = ByteRange::Kind::part, .first = size - std::min(*last, size), .last = size - 1};
    }
    if (!first || (!to.empty() && (!last || *last < *first)))
        return {};
    if (*first >= size)
        return {.kind = ByteRange::Kind::outside};
    return {
        .kind = ByteRange::Kind::part, .first = *first, .last = std::min(last.value_or(size - 1), size - 1)};
}

} // namespace adserver
