#pragma once

#include "Clock.h"
#include "Error.h"
#include "Export.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace virlo
{

[[nodiscard]] VIRLO_EXPORT std::string describe(const std::string& text);
[[nodiscard]] VIRLO_EXPORT std::string describe(const char* text);
[[nodiscard]] VIRLO_EXPORT std::string describe(std::string_view text);
/// `2016-03-01 10:20:30 +0000`, in UTC.
[[nodiscard]] VIRLO_EXPORT std::string describe(Date date);
/// JSON on one line; text that is not UTF-8 is shown with replacement characters.
[[nodiscard]] VIRLO_EXPORT std::string describe(const JSON& value);

/// Records describe themselves by a member of that name.
template <typename Record>

requires requires(const Record& record)
{
    {
        record.description()
        } -> std::convertible_to<std::string>;
}

[[nodiscard]] std::string describe(const Record& record)
{
    return record.description();
}

class FormatArgument;

/// Lists as `(a, b)`, tables as `{key = value; key = value}`, each element by its own description.
template <std::ranges::input_range Range>
requires(!std::convertible_to<const Range&, std::string_view> && !std::same_as<Range, JSON>)
    [[nodiscard]] std::string describe(const Range& range);

/// One argument of `format`: a number as itself (a boolean as 1 or 0), anything else by its description;
/// "(null)" for an absent one. Pointers and optional values stand for what they hold.
class VIRLO_EXPORT FormatArgument
{
public:
    template <typename Value>
    FormatArgument(const Value& value) // NOLINT(google-explicit-constructor): arguments convert in place
        : m_value(convert(value))
    {
    }

    [[nodiscard]] std::string asText() const;
    /// A floating-point number without its fraction; anything else as `asText`.
    [[nodiscard]] std::string asInteger() const;
    /// A number with that many decimals; anything else as `asText`.
    [[nodiscard]] std::string asDecimal(int precision) const;

private:
    using Stored = std::variant<std::string, std::int64_t, std::uint64_t, double>;

    template <typename Value>
    struct IsOptional : std::false_type {
    };

    template <typename Value>
    struct IsOptional<std::optional<Value>> : std::true_type {
    };

    template <typename Value>
    struct IsPointer : std::is_pointer<Value> {
    };

    template <typename Value>
    struct IsPointer<std::shared_ptr<Value>> : std::true_type {
    };

    template <typename Value>
    static Stored convert(const Value& value)
    {
        using Plain = std::remove_cvref_t<Value>;
        if constexpr (std::is_same_v<Plain, std::nullptr_t> || std::is_same_v<Plain, std::nullopt_t>)
            return std::string("(null)");
        else if constexpr (std::is_array_v<Plain> && std::convertible_to<const Plain&, const char*>)
            return std::string(static_cast<const char*>(value));
        else if constexpr (std::is_same_v<Plain, const char*> || std::is_same_v<Plain, char*>)
            return describe(static_cast<const char*>(value));
        else if constexpr (IsOptional<Plain>::value || IsPointer<Plain>::value)
            return value ? convert(*value) : Stored(std::string("(null)"));
        else if constexpr (std::is_same_v<Plain, char>)
            return std::string(1, value);
        else if constexpr (std::floating_point<Plain>)
            return static_cast<double>(value);
        else if constexpr (std::unsigned_integral<Plain>)
            return static_cast<std::uint64_t>(value);
        else if constexpr (std::signed_integral<Plain> || std::is_enum_v<Plain>)
            return static_cast<std::int64_t>(value);
        else
            return describe(value);
    }

    Stored m_value;
};

/// Fills `pattern`: "%@", "%s" and "%c" take a description, "%d" and "%u" a whole number, "%f" a decimal one
/// (six decimals; "%.2f" writes two, "%.f" none), "%%" is a percent sign; "l" before the letter is skipped.
/// Any other directive, and one without an argument, stays as it is. An argument of another type than its
/// directive's is written by its description. Arguments are never read as patterns; independent of the
/// locale.
[[nodiscard]] VIRLO_EXPORT std::string formatArguments(std::string_view pattern,
                                                       const std::vector<FormatArgument>& arguments);

template <typename... Arguments>
[[nodiscard]] std::string format(std::string_view pattern, const Arguments&... arguments)
{
    return formatArguments(pattern, {FormatArgument(arguments)...});
}

template <std::ranges::input_range Range>

requires(!std::convertible_to<const Range&, std::string_view> && !std::same_as<Range, JSON>) std::string
    describe(const Range& range)
{
    constexpr bool isTable = requires
    {
        typename Range::mapped_type;
    };
    std::string text;
    for (const auto& element : range) {
        if (!text.empty())
            text += isTable ? "; " : ", ";
        if constexpr (isTable)
            text += FormatArgument(element.first).asText() + " = " + FormatArgument(element.second).asText();
        else
            text += FormatArgument(element).asText();
    }
    return isTable ? '{' + text + '}' : '(' + text + ')';
}

} // namespace virlo
