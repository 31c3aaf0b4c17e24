#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// Text operations that are independent of the locale; bytes beyond ASCII are left as they are.
namespace virlo::ASCII
{

[[nodiscard]] constexpr char lowercase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

[[nodiscard]] inline std::string lowercase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char each) { return lowercase(each); });
    return lower;
}

[[nodiscard]] constexpr bool equalIgnoringCase(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lowercase(a) == lowercase(b); });
}

/// Appends `text` with every byte percent-encoded for which `isPlain` is false.
template <typename IsPlain>
void appendPercentEncoded(std::string& result, std::string_view text, IsPlain isPlain)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (isPlain(each))
            result += each;
        else
            result.append({'%', digits[byte >> 4], digits[byte & 0xF]});
    }
}

} // namespace virlo::ASCII
