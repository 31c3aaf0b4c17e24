#include "RandomIdentifier.h"

#include <array>
#include <openssl/rand.h>
#include <stdexcept>

namespace adserver
{

std::string randomIdentifier()
{
    constexpr const char* digits = "0123456789abcdef";
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), bytes.size()) != 1)
        throw std::runtime_error("the system has no random numbers");
    std::string text;
    for (const unsigned byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

} // namespace adserver
