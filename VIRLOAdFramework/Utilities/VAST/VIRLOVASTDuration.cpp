#include "VIRLOVASTDuration.h"

#include <algorithm>

namespace VIRLOVASTDuration
{

namespace
{

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::string_view withoutWhiteSpace(std::string_view text)
{
    constexpr const char* whiteSpace = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    return text.substr(0, text.find_last_not_of(whiteSpace) + 1);
}

/// Removes the digits at the beginning of the text and returns them.
std::string_view takeDigits(std::string_view& text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    return digits;
}

void append(double& number, std::string_view digits)
{
    for (const char digit : digits)
        number = number * 10 + (digit - '0');
}

/// The integer part of a number in the decimal style of "1,234.5"; 0 where the text is anything else.
double integerPart(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    const std::string_view first = takeDigits(text);
    double number = 0;
    append(number, first);
    bool isNumber = !first.empty();
    if (first.size() <= 3) {
        while (isNumber && text.starts_with(',')) {
            text.remove_prefix(1);
            const std::string_view group = takeDigits(text);
            append(number, group);
            isNumber = group.size() == 3;
        }
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        isNumber = !takeDigits(text).empty() || isNumber;
    }
    if (!isNumber || !text.empty())
        return 0;
    // A long row of digits must not give an infinite duration.
    number = std::min(number, 0x1p63);
    return negative ? -number : number;
}

} // namespace

double seconds(std::string_view text)
{
    double total = 0;
    for (int multiplier = 3600;; multiplier /= 60) {
        const auto colon = text.find(':');
        total += integerPart(withoutWhiteSpace(text.substr(0, colon))) * multiplier;
        if (colon == std::string_view::npos || multiplier == 0)
            return total;
        text.remove_prefix(colon + 1);
    }
}

} // namespace VIRLOVASTDuration
