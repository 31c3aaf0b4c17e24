#include "JSON.h"

#include "LeadingNumber.h"
#include "StringFormat.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace virlo
{

namespace
{

const JSON* find(const JSON& object, const char* key)
{
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

const std::string& textOf(const JSON& value)
{
    return value.get_ref<const std::string&>();
}

double finite(double value)
{
    constexpr double largest = std::numeric_limits<double>::max();
    return std::isnan(value) ? 0 : std::clamp(value, -largest, largest);
}

} // namespace

namespace JSONReading
{

std::optional<std::string> string(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    return value && value->is_string() ? std::optional(textOf(*value)) : std::nullopt;
}

std::optional<std::string> text(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    if (!value)
        return std::nullopt;
    switch (value->type()) {
    case JSON::value_t::string:
        return textOf(*value);
    case JSON::value_t::boolean:
        return value->get<bool>() ? "1" : "0";
    case JSON::value_t::number_integer:
        return format("%@", value->get<std::int64_t>());
    case JSON::value_t::number_unsigned:
        return format("%@", value->get<std::uint64_t>());
    case JSON::value_t::number_float:
        return format("%@", value->get<double>());
    default:
        return std::nullopt;
    }
}

std::int64_t integer(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    if (!value)
        return 0;
    switch (value->type()) {
    case JSON::value_t::string:
        return LeadingNumber::integer(textOf(*value));
    case JSON::value_t::boolean:
        return value->get<bool>() ? 1 : 0;
    case JSON::value_t::number_integer:
        return value->get<std::int64_t>();
    case JSON::value_t::number_unsigned:
        return static_cast<std::int64_t>(
            std::min(value->get<std::uint64_t>(),
                     static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())));
    case JSON::value_t::number_float:
        return LeadingNumber::integer(value->get<double>());
    default:
        return 0;
    }
}

std::uint64_t unsignedInteger(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    if (!value)
        return 0;
    switch (value->type()) {
    case JSON::value_t::string:
        return LeadingNumber::unsignedInteger(textOf(*value));
    case JSON::value_t::number_unsigned:
        return value->get<std::uint64_t>();
    case JSON::value_t::number_float:
        return LeadingNumber::unsignedInteger(value->get<double>());
    default:
        return static_cast<std::uint64_t>(std::max<std::int64_t>(integer(object, key), 0));
    }
}

double number(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    if (!value)
        return 0;
    switch (value->type()) {
    case JSON::value_t::string:
        return LeadingNumber::decimal(textOf(*value));
    case JSON::value_t::boolean:
        return value->get<bool>() ? 1 : 0;
    case JSON::value_t::number_integer:
    case JSON::value_t::number_unsigned:
    case JSON::value_t::number_float:
        return finite(value->get<double>());
    default:
        return 0;
    }
}

bool boolean(const JSON& object, const char* key)
{
    const JSON* const value = find(object, key);
    if (!value || !value->is_string())
        return number(object, key) != 0;
    const auto& given = textOf(*value);
    const auto first = std::min(given.find_first_not_of(" \t\n\v\f\r"), given.size());
    return (first < given.size() && std::string_view("YyTt").find(given[first]) != std::string_view::npos) ||
           LeadingNumber::decimal(given) != 0;
}

const JSON& array(const JSON& object, const char* key)
{
    static const auto* const none = new JSON(JSON::array());
    const JSON* const value = find(object, key);
    return value && value->is_array() ? *value : *none;
}

bool has(const JSON& object, const char* key)
{
    return find(object, key) != nullptr;
}

} // namespace JSONReading

} // namespace virlo
