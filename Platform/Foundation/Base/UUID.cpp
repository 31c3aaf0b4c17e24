#include "UUID.h"

#include <array>
#include <cctype>
#include <random>
#include <sys/random.h>

namespace virlo::UUID
{

namespace
{

using Bytes = std::array<unsigned char, 16>;

bool isHyphenPosition(std::size_t index)
{
    return index == 8 || index == 13 || index == 18 || index == 23;
}

Bytes randomBytes()
{
    Bytes bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()))
        return bytes;
    std::random_device device; // the kernel or sandbox lacks the call
    for (auto& byte : bytes)
        byte = static_cast<unsigned char>(device());
    return bytes;
}

} // namespace

std::string random()
{
    Bytes bytes = randomBytes();
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text;
    for (const auto byte : bytes) {
        if (isHyphenPosition(text.size()))
            text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

bool isValid(std::string_view text)
{
    if (text.size() != 36)
        return false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto character = static_cast<unsigned char>(text[index]);
        if (isHyphenPosition(index) ? character != '-' : std::isxdigit(character) == 0)
            return false;
    }
    return true;
}

} // namespace virlo::UUID
