#include "StringFormat.h"

#include "LeadingNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

namespace virlo
{

namespace
{

struct Directive {
    int precision = 6;
    char conversion = '\0';
    std::size_t length = 0; ///< of the whole, percent sign included
};

/// The directive at the beginning of `pattern`, which starts with a percent sign; nothing for an unknown one.
std::optional<Directive> directiveAt(std::string_view pattern)
{
    constexpr int mostDecimals = 64;
    Directive directive;
    std::size_t index = 1;
    if (index < pattern.size() && pattern[index] == '.') {
        directive.precision = 0;
        for (++index; index < pattern.size() && pattern[index] >= '0' && pattern[index] <= '9'; ++index)
            directive.precision = std::min(directive.precision * 10 + (pattern[index] - '0'), mostDecimals);
    }
    while (index < pattern.size() && pattern[index] == 'l')
        ++index;
    if (index == pattern.size() || std::string_view("@dufcs%").find(pattern[index]) == std::string_view::npos)
        return std::nullopt;
    directive.conversion = pattern[index];
    directive.length = index + 1;
    return directive;
}

template <typename Number, typename... Format>
std::string digits(Number value, Format... format)
{
    std::array<char, 512> buffer{}; // the longest double with `mostDecimals`
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
    return {buffer.data(), result.ptr};
}

std::string filled(const Directive& directive, const FormatArgument& argument)
{
    switch (directive.conversion) {
    case 'd':
    case 'u':
        return argument.asInteger();
    case 'f':
        return argument.asDecimal(directive.precision);
    default:
        return argument.asText();
    }
}

} // namespace

std::string describe(const std::string& text)
{
    return text;
}

std::string describe(const char* text)
{
    return text ? text : "(null)";
}

std::string describe(std::string_view text)
{
    return std::string(text);
}

std::string describe(Date date)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day calendar(day);
    const std::chrono::hh_mm_ss time(seconds - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
                  static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                  static_cast<unsigned>(calendar.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return text.data();
}

std::string describe(const JSON& value)
{
    return value.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

std::string FormatArgument::asText() const
{
    return std::visit(
        [](const auto& value) -> std::string {
            if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>)
                return digits(value);
            else
                return value;
        },
        m_value);
}

std::string FormatArgument::asInteger() const
{
    if (const auto* const number = std::get_if<double>(&m_value))
        return digits(LeadingNumber::integer(*number));
    return asText();
}

std::string FormatArgument::asDecimal(int precision) const
{
    // By to_chars: printf writes the decimal point of the locale.
    const auto decimal = [precision](double value) {
        return digits(value, std::chars_format::fixed, precision);
    };
    if (const auto* const number = std::get_if<double>(&m_value))
        return decimal(*number);
    if (const auto* const number = std::get_if<std::int64_t>(&m_value))
        return decimal(static_cast<double>(*number));
    if (const auto* const number = std::get_if<std::uint64_t>(&m_value))
        return decimal(static_cast<double>(*number));
    return asText();
}

std::string formatArguments(std::string_view pattern, const std::vector<FormatArgument>& arguments)
{
    std::string text;
    text.reserve(pattern.size());
    auto argument = arguments.begin();
    while (!pattern.empty()) {
        const auto plain = pattern.substr(0, pattern.find('%'));
        text += plain;
        pattern.remove_prefix(plain.size());
        if (pattern.empty())
            break;
        const auto directive = directiveAt(pattern);
        const auto length = directive ? directive->length : 1;
        if (directive && directive->conversion == '%')
            text += '%';
        else if (directive && argument != arguments.end())
            text += filled(*directive, *argument++);
        else
            text += pattern.substr(0, length);
        pattern.remove_prefix(length);
    }
    return text;
}

} // namespace virlo
