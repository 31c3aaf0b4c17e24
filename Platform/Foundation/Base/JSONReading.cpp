#include "JSONReading.h"

#include "LeadingNumber.h"
#include "StringFormat.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace virlo::JSONReading
{

namespace
{

template <typename Number>
Number bounded(double value)
{
    constexpr double largest = std::numeric_limits<Number>::max();
    return std::isnan(value) ? 0 : static_cast<Number>(std::clamp(value, -largest, largest));
}

/// The key's value; JSON null where there is none.
const JSON& valueOf(const JSON& object, const char* key)
{
    static const auto* const none = new JSON(nullptr);
    if (!object.is_object())
        return *none;
    const auto found = object.find(key);
    return found == object.end() ? *none : *found;
}

const std::string& textOf(const JSON& value)
{
    return value.get_ref<const std::string&>();
}

} // namespace

std::optional<std::string> string(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    return value.is_string() ? std::optional(textOf(value)) : std::nullopt;
}

std::optional<std::string> text(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    switch (value.type()) {
    case JSON::value_t::string:
        return textOf(value);
    case JSON::value_t::boolean:
        return value.get<bool>() ? "1" : "0";
    case JSON::value_t::number_integer:
    case JSON::value_t::number_unsigned:
        return value.dump();
    case JSON::value_t::number_float:
        return format("%@", value.get<double>()); // "4", where `dump` writes "4.0"
    default:
        return std::nullopt;
    }
}

std::int64_t integer(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    switch (value.type()) {
    case JSON::value_t::string:
        return LeadingNumber::integer(textOf(value));
    case JSON::value_t::boolean:
        return value.get<bool>() ? 1 : 0;
    case JSON::value_t::number_integer:
        return value.get<std::int64_t>();
    case JSON::value_t::number_unsigned:
        return static_cast<std::int64_t>(
            std::min<std::uint64_t>(value.get<std::uint64_t>(), std::numeric_limits<std::int64_t>::max()));
    case JSON::value_t::number_float:
        return LeadingNumber::integer(value.get<double>());
    default:
        return 0;
    }
}

std::uint64_t unsignedInteger(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    switch (value.type()) {
    case JSON::value_t::string:
        return LeadingNumber::unsignedInteger(textOf(value));
    case JSON::value_t::number_unsigned:
        return value.get<std::uint64_t>();
    case JSON::value_t::number_float:
        return LeadingNumber::unsignedInteger(value.get<double>());
    default:
        return static_cast<std::uint64_t>(std::max<std::int64_t>(integer(object, key), 0));
    }
}

double number(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    if (value.is_string())
        return LeadingNumber::decimal(textOf(value));
    if (value.is_boolean())
        return value.get<bool>() ? 1 : 0;
    return value.is_number() ? bounded<double>(value.get<double>()) : 0;
}

float floatNumber(const JSON& object, const char* key)
{
    return bounded<float>(number(object, key));
}

bool boolean(const JSON& object, const char* key)
{
    const JSON& value = valueOf(object, key);
    if (!value.is_string())
        return number(object, key) != 0;
    const auto& given = textOf(value);
    const auto first = std::min(given.find_first_not_of(" \t\n\v\f\r"), given.size());
    return (first < given.size() && std::string_view("YyTt").find(given[first]) != std::string_view::npos) ||
           LeadingNumber::decimal(given) != 0;
}

const JSON& array(const JSON& object, const char* key)
{
    static const auto* const none = new JSON(JSON::array());
    const JSON& value = valueOf(object, key);
    return value.is_array() ? value : *none;
}

} // namespace virlo::JSONReading
