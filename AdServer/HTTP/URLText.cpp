#include "URLText.h"

#include <algorithm>
#include <cctype>

namespace adserver
{

std::string percentEncoded(const std::string& text)
{
    constexpr std::string_view plain = "-._~";
    constexpr const char* digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < 128 && (std::isalnum(byte) != 0 || plain.find(letter) != plain.npos))
            encoded += letter;
        else
            (encoded += '%').append({digits[byte >> 4U], digits[byte & 15U]});
    }
    return encoded;
}

bool isAbsoluteURL(const std::string& reference)
{
    const auto colon = reference.find(':');
    if (colon == reference.npos || colon == 0 ||
        std::isalpha(static_cast<unsigned char>(reference.front())) == 0)
        return false;
    return std::all_of(reference.begin(), reference.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](char letter) {
                           return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '+' ||
                                  letter == '-' || letter == '.';
                       });
}

void fillIn(std::string& text, std::string_view placeholder, const std::string& value)
{
    for (auto at = text.find(placeholder); at != text.npos; at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
}

std::string absoluteURL(const std::string& reference, const std::string& origin, const std::string& folder)
{
    if (reference.empty() || isAbsoluteURL(reference))
        return reference;
    if (reference.starts_with("//"))
        return origin.substr(0, origin.find(':') + 1) + reference;
    return reference.starts_with('/') ? origin + reference : origin + folder + reference;
}

} // namespace adserver
