#include "SingleByteEncoding.h"

#include <algorithm>
#include <cstdint>
#include <iconv.h>

namespace virlo::SingleByteEncoding
{

namespace
{

/// Only names that cannot mean anything else go on to the system.
bool isKnown(const std::string& name)
{
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter | 0x20) : letter; });
    const auto endsInDigits = [&lower](std::size_t from) {
        return lower.size() > from && lower.size() <= from + 2 &&
               lower.find_first_not_of("0123456789", from) == std::string::npos;
    };
    return lower == "koi8-r" || lower == "koi8-u" || (lower.starts_with("iso-8859-") && endsInDigits(9)) ||
           (lower.starts_with("windows-125") && endsInDigits(11));
}

} // namespace

std::optional<std::array<int, 256>> table(const std::string& name)
{
    if (!isKnown(name))
        return std::nullopt;
    const iconv_t converter = ::iconv_open("UTF-32LE", name.c_str());
    if (converter == iconv_t(-1)) // NOLINT(performance-no-int-to-ptr): the library's own sign of failure
        return std::nullopt;
    std::array<int, 256> characters{};
    for (int byte = 0; byte < 256; ++byte) {
        char input = static_cast<char>(byte);
        std::uint8_t output[4] = {};
        char* from = &input;
        char* to = reinterpret_cast<char*>(output);
        std::size_t inputLeft = 1;
        std::size_t outputLeft = sizeof output;
        const bool converted = ::iconv(converter, &from, &inputLeft, &to, &outputLeft) != std::size_t(-1);
        characters[static_cast<std::size_t>(byte)] =
            converted && outputLeft == 0 ? output[0] | output[1] << 8 | output[2] << 16 : -1;
        ::iconv(converter, nullptr, nullptr, nullptr, nullptr);
    }
    ::iconv_close(converter);
    return characters;
}

} // namespace virlo::SingleByteEncoding
