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

/// A directive's parts between the percent sign and the letter that ends it.
struct Directive {
    bool left = false;
    bool zeros = false;
    bool plus = false;
    std::size_t width = 0;
    std::optional<int> precision;
    char conversion = '\0';
    std::size_t length = 0; ///< of the whole, percent sign included
};

constexpr int largestField = 512;

int takeDigits(std::string_view pattern, std::size_t& index)
{
    int value = 0;
    for (; index < pattern.size() && pattern[index] >= '0' && pattern[index] <= '9'; ++index)
        value = std::min(value * 10 + (pattern[index] - '0'), largestField);
    return value;
}

/// The directive at the beginning of `pattern`, which starts with a percent sign; nothing where none is
/// understood.
std::optional<Directive> directiveAt(std::string_view pattern)
{
    Directive directive;
    std::size_t index = 1;
    for (; index < pattern.size(); ++index) {
        if (pattern[index] == '-')
            directive.left = true;
        else if (pattern[index] == '0')
            directive.zeros = true;
        else if (pattern[index] == '+')
            directive.plus = true;
        else
            break;
    }
    directive.width = static_cast<std::size_t>(takeDigits(pattern, index));
    if (index < pattern.size() && pattern[index] == '.') {
        ++index;
        directive.precision = takeDigits(pattern, index);
    }
    while (index < pattern.size() && std::string_view("lhqzL").find(pattern[index]) != std::string_view::npos)
        ++index;
    if (index == pattern.size() ||
        std::string_view("@diuxXfcs%").find(pattern[index]) == std::string_view::npos)
        return std::nullopt;
    directive.conversion = pattern[index];
    directive.length = index + 1;
    return directive;
}

template <typename Number, typename... Format>
std::string digits(Number value, Format... format)
{
    std::array<char, 1024> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
    return {buffer.data(), result.ptr};
}

std::string inField(const Directive& directive, std::string text, bool isNumber)
{
    if (isNumber && directive.plus && !text.starts_with('-'))
        text.insert(0, 1, '+');
    if (text.size() >= directive.width)
        return text;
    const auto missing = directive.width - text.size();
    if (directive.left)
        text.append(missing, ' ');
    else if (directive.zeros && isNumber)
        text.insert(text.find_first_not_of("+-"), missing, '0');
    else
        text.insert(0, missing, ' ');
    return text;
}

std::string filled(const Directive& directive, const FormatArgument& argument)
{
    switch (directive.conversion) {
    case 'd':
    case 'i':
        return inField(directive, digits(argument.asInteger()), true);
    case 'u':
        return inField(directive, digits(argument.asUnsignedInteger()), true);
    case 'x':
        return inField(directive, digits(argument.asUnsignedInteger(), 16), true);
    case 'X': {
        auto text = digits(argument.asUnsignedInteger(), 16);
        std::transform(text.begin(), text.end(), text.begin(), [](char digit) {
            return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
        });
        return inField(directive, std::move(text), true);
    }
    case 'f': // not by printf, which writes a comma under some locales
        return inField(directive,
                       digits(argument.asNumber(), std::chars_format::fixed, directive.precision.value_or(6)),
                       true);
    case 'c':
        return inField(directive, argument.asCharacter(), false);
    default:
        break;
    }
    auto text = argument.asText();
    if (directive.precision && directive.conversion == 's')
        text.resize(std::min(text.size(), static_cast<std::size_t>(*directive.precision)));
    return inField(directive, std::move(text), false);
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
    struct Writer {
        std::string operator()(const std::string& text) const { return text; }

        std::string operator()(std::int64_t value) const { return digits(value); }

        std::string operator()(std::uint64_t value) const { return digits(value); }

        std::string operator()(double value) const { return digits(value); }

        std::string operator()(char value) const { return {value}; }
    };

    return std::visit(Writer(), m_value);
}

std::int64_t FormatArgument::asInteger() const
{
    struct Reader {
        std::int64_t operator()(const std::string& text) const { return LeadingNumber::integer(text); }

        std::int64_t operator()(std::int64_t value) const { return value; }

        std::int64_t operator()(std::uint64_t value) const { return static_cast<std::int64_t>(value); }

        std::int64_t operator()(double value) const { return LeadingNumber::integer(value); }

        std::int64_t operator()(char value) const { return value; }
    };

    return std::visit(Reader(), m_value);
}

std::uint64_t FormatArgument::asUnsignedInteger() const
{
    if (const auto* const text = std::get_if<std::string>(&m_value))
        return LeadingNumber::unsignedInteger(*text);
    if (const auto* const number = std::get_if<double>(&m_value))
        return LeadingNumber::unsignedInteger(*number);
    return static_cast<std::uint64_t>(asInteger());
}

double FormatArgument::asNumber() const
{
    struct Reader {
        double operator()(const std::string& text) const { return LeadingNumber::decimal(text); }

        double operator()(std::int64_t value) const { return static_cast<double>(value); }

        double operator()(std::uint64_t value) const { return static_cast<double>(value); }

        double operator()(double value) const { return value; }

        double operator()(char value) const { return value; }
    };

    return std::visit(Reader(), m_value);
}

std::string FormatArgument::asCharacter() const
{
    if (std::holds_alternative<std::string>(m_value))
        return std::get<std::string>(m_value).substr(0, 1);
    return {static_cast<char>(asInteger())};
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
