#include "PlainDatePattern.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

namespace virlo
{

namespace
{

constexpr std::array<std::string_view, 12> monthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> dayNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

struct Fields {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int weekday = -1;
    bool isUniversal = false;
};

/// Exactly `count` digits off the front of `text`.
bool takeDigits(std::string_view& text, std::size_t count, int& value)
{
    if (text.size() < count)
        return false;
    value = 0;
    for (const char digit : text.substr(0, count)) {
        if (digit < '0' || digit > '9')
            return false;
        value = value * 10 + (digit - '0');
    }
    text.remove_prefix(count);
    return true;
}

template <typename Names>
bool takeName(std::string_view& text, const Names& names, int& index)
{
    const auto found = std::find(names.begin(), names.end(), text.substr(0, 3));
    if (found == names.end())
        return false;
    index = static_cast<int>(found - names.begin());
    text.remove_prefix(3);
    return true;
}

bool take(std::string_view& text, std::string_view literal)
{
    if (!text.starts_with(literal))
        return false;
    text.remove_prefix(literal.size());
    return true;
}

/// Of an hour that comes twice in autumn the second is meant, as everywhere in ICU. Nothing for an hour
/// skipped in spring.
std::optional<std::time_t> timeInDeviceZone(const Fields& fields)
{
    for (const int daylightSaving : {0, 1}) {
        std::tm local{};
        local.tm_year = fields.year - 1900;
        local.tm_mon = fields.month - 1;
        local.tm_mday = fields.day;
        local.tm_hour = fields.hour;
        local.tm_min = fields.minute;
        local.tm_sec = fields.second;
        local.tm_isdst = daylightSaving;
        const std::time_t time = std::mktime(&local);
        // Fields that were moved say that the zone did not have that kind of time then.
        if (time != -1 && local.tm_isdst == daylightSaving && local.tm_hour == fields.hour &&
            local.tm_min == fields.minute)
            return time;
    }
    return std::nullopt;
}

std::optional<Date> dateOf(const Fields& fields)
{
    using namespace std::chrono;
    const year_month_day calendar{year(fields.year), month(static_cast<unsigned>(fields.month)),
                                  day(static_cast<unsigned>(fields.day))};
    const bool isPlain = fields.year >= 1970 && fields.year < 2200 && calendar.ok() && fields.hour < 24 &&
                         fields.minute < 60 && fields.second < 60;
    if (!isPlain)
        return std::nullopt;
    const sys_days midnight(calendar);
    if (fields.weekday >= 0 && weekday(midnight).c_encoding() != static_cast<unsigned>(fields.weekday))
        return std::nullopt;
    if (fields.isUniversal)
        return midnight + hours(fields.hour) + minutes(fields.minute) + seconds(fields.second) +
               milliseconds(fields.millisecond);
    const auto time = timeInDeviceZone(fields);
    return time ? std::optional(Date(seconds(*time)) + milliseconds(fields.millisecond)) : std::nullopt;
}

} // namespace

std::optional<PlainDatePattern> PlainDatePattern::compile(std::string_view pattern)
{
    constexpr std::array<std::pair<std::string_view, Field>, 11> fields{{{"yyyy", Field::Year},
                                                                         {"MMM", Field::MonthName},
                                                                         {"MM", Field::Month},
                                                                         {"dd", Field::Day},
                                                                         {"HH", Field::Hour},
                                                                         {"mm", Field::Minute},
                                                                         {"ss", Field::Second},
                                                                         {"SSS", Field::Millisecond},
                                                                         {"EEE", Field::DayName},
                                                                         {"E", Field::DayName},
                                                                         {"zzz", Field::Zone}}};
    PlainDatePattern compiled;
    while (!pattern.empty()) {
        const char first = pattern.front();
        const bool isLetter = (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z');
        if (isLetter) {
            const auto run = pattern.substr(0, pattern.find_first_not_of(first));
            const auto* const known = std::find_if(fields.begin(), fields.end(),
                                                   [run](const auto& field) { return field.first == run; });
            if (known == fields.end())
                return std::nullopt;
            compiled.m_pieces.push_back({known->second, {}});
            pattern.remove_prefix(run.size());
        } else if (first == '\'') {
            const auto end = pattern.find('\'', 1);
            if (end == std::string_view::npos || end == 1)
                return std::nullopt;
            compiled.m_pieces.push_back({Field::Literal, std::string(pattern.substr(1, end - 1))});
            pattern.remove_prefix(end + 1);
            if (pattern.starts_with('\'')) // a quote inside the quotation
                return std::nullopt;
        } else {
            compiled.m_pieces.push_back({Field::Literal, std::string(1, first)});
            pattern.remove_prefix(1);
        }
    }
    return compiled;
}

std::optional<Date> PlainDatePattern::dateFromString(std::string_view text) const
{
    Fields fields;
    for (const auto& [field, literal] : m_pieces) {
        bool taken = false;
        switch (field) {
        case Field::Literal:
            taken = take(text, literal);
            break;
        case Field::Year:
            taken = takeDigits(text, 4, fields.year);
            break;
        case Field::Month:
            taken = takeDigits(text, 2, fields.month);
            break;
        case Field::MonthName:
            taken = takeName(text, monthNames, fields.month);
            ++fields.month;
            break;
        case Field::Day:
            taken = takeDigits(text, 2, fields.day);
            break;
        case Field::Hour:
            taken = takeDigits(text, 2, fields.hour);
            break;
        case Field::Minute:
            taken = takeDigits(text, 2, fields.minute);
            break;
        case Field::Second:
            taken = takeDigits(text, 2, fields.second);
            break;
        case Field::Millisecond:
            taken = takeDigits(text, 3, fields.millisecond);
            break;
        case Field::DayName:
            taken = takeName(text, dayNames, fields.weekday);
            break;
        case Field::Zone:
            taken = fields.isUniversal = take(text, "GMT") || take(text, "UTC");
            break;
        }
        if (!taken)
            return std::nullopt;
    }
    return text.empty() ? dateOf(fields) : std::nullopt;
}

} // namespace virlo
