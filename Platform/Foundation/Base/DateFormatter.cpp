#include "DateFormatter.h"

#include "LeadingNumber.h"

#include <date/date.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <sstream>
#include <utility>

namespace virlo
{

namespace
{

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::string_view secondsWithMilliseconds = "ss'.'SSS";

// Longer fields first: "MMM" begins with "MM".
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> fields{
    {{secondsWithMilliseconds, "%S"},
     {"yyyy", "%Y"},
     {"MMM", "%b"},
     {"zzz", "%Z"},
     {"MM", "%m"},
     {"dd", "%d"},
     {"HH", "%H"},
     {"mm", "%M"},
     {"ss", "%S"}}};

constexpr std::array<std::pair<std::string_view, int>, 26> zoneHours{
    {{"GMT", 0},  {"UTC", 0},  {"UT", 0},   {"Z", 0},     {"WET", 0},  {"WEST", 1}, {"BST", 1},
     {"CET", 1},  {"CEST", 2}, {"EET", 2},  {"EEST", 3},  {"MSK", 3},  {"JST", 9},  {"KST", 9},
     {"AST", -4}, {"ADT", -3}, {"EST", -5}, {"EDT", -4},  {"CST", -6}, {"CDT", -5}, {"MST", -7},
     {"MDT", -6}, {"PST", -8}, {"PDT", -7}, {"AKST", -9}, {"HST", -10}}};

/// The UTC offset of a zone such as "PST", "GMT+1" or "GMT+0530".
std::optional<minutes> offsetOfZone(std::string_view zone)
{
    const auto* const known = std::find_if(zoneHours.begin(), zoneHours.end(),
                                           [zone](const auto& each) { return each.first == zone; });
    if (known != zoneHours.end())
        return hours(known->second);
    const auto digits = zone.substr(std::min<std::size_t>(zone.size(), 4));
    const bool isOffset = (zone.starts_with("GMT+") || zone.starts_with("GMT-")) && !digits.empty() &&
                          digits.size() <= 4 &&
                          digits.find_first_not_of("0123456789") == std::string_view::npos;
    if (!isOffset)
        return std::nullopt;
    const auto number = LeadingNumber::integer(digits);
    const minutes offset = digits.size() > 2 ? hours(number / 100) + minutes(number % 100) : hours(number);
    return zone[3] == '-' ? -offset : offset;
}

/// The UTC moment of a local time on the device. The hour that comes twice in autumn is the second one; a
/// time in the hour that is skipped in spring is read with the offset before the change.
seconds momentInDeviceZone(date::local_seconds local)
{
    const auto day = date::floor<date::days>(local);
    const date::year_month_day calendar(day);
    const date::hh_mm_ss time(local - day);
    const auto momentWith = [&](int daylightSaving) {
        std::tm parts{};
        parts.tm_year = static_cast<int>(calendar.year()) - 1900;
        parts.tm_mon = static_cast<int>(static_cast<unsigned>(calendar.month())) - 1;
        parts.tm_mday = static_cast<int>(static_cast<unsigned>(calendar.day()));
        parts.tm_hour = static_cast<int>(time.hours().count());
        parts.tm_min = static_cast<int>(time.minutes().count());
        parts.tm_sec = static_cast<int>(time.seconds().count());
        parts.tm_isdst = daylightSaving;
        const std::time_t moment = std::mktime(&parts);
        return std::pair(seconds(moment), parts.tm_isdst == daylightSaving);
    };
    const auto [standard, isStandardTime] = momentWith(0);
    if (isStandardTime)
        return standard;
    const auto [summer, isSummerTime] = momentWith(1);
    return isSummerTime ? summer : standard;
}

template <typename Precision>
std::optional<Date> parse(const std::string& text, bool beginsWithDayName, const std::string& format)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    date::local_time<Precision> local;
    std::string zone;
    if (beginsWithDayName) { // by itself: within a format it would have to agree with the date
        date::weekday any;
        date::from_stream(stream, "%a", any);
    }
    date::from_stream(stream, format.c_str(), local, &zone);
    if (stream.fail() || stream.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    const auto whole = date::floor<seconds>(local);
    seconds moment{};
    if (zone.empty()) {
        moment = momentInDeviceZone(whole);
    } else if (const auto offset = offsetOfZone(zone)) {
        moment = whole.time_since_epoch() - *offset;
    } else {
        return std::nullopt;
    }
    constexpr seconds last(9'200'000'000);
    return Date(std::clamp(moment, -last, last) + (local - whole));
}

} // namespace

DateFormatter::DateFormatter(std::string dateFormat) : m_dateFormat(std::move(dateFormat))
{
    std::string_view rest = m_dateFormat;
    m_beginsWithDayName = rest.starts_with('E');
    if (m_beginsWithDayName)
        rest.remove_prefix(1);
    while (!rest.empty()) {
        const auto* const field = std::find_if(
            fields.begin(), fields.end(), [rest](const auto& each) { return rest.starts_with(each.first); });
        if (field != fields.end()) {
            m_hasMilliseconds = m_hasMilliseconds || field->first == secondsWithMilliseconds;
            m_parseFormat += field->second;
            rest.remove_prefix(field->first.size());
        } else if (rest.front() == '\'') {
            const auto end = std::min(rest.find('\'', 1), rest.size() - 1);
            m_parseFormat += rest.substr(1, end - 1);
            rest.remove_prefix(end + 1);
        } else if ((rest.front() >= 'a' && rest.front() <= 'z') ||
                   (rest.front() >= 'A' && rest.front() <= 'Z')) {
            m_parseFormat.clear();
            return;
        } else {
            m_parseFormat += rest.front();
            rest.remove_prefix(1);
        }
    }
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const
{
    constexpr std::size_t longest = 64;
    if (m_parseFormat.empty() || text.empty() || text.size() > longest ||
        text.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string normalised(text);
    // The parser takes a fraction for optional, and no colon in a zone.
    if (m_hasMilliseconds)
        return normalised.find('.') == std::string::npos
                   ? std::nullopt
                   : parse<milliseconds>(normalised, m_beginsWithDayName, m_parseFormat);
    if (const auto zone = normalised.find("GMT"); zone != std::string::npos)
        normalised.erase(
            std::remove(normalised.begin() + static_cast<std::ptrdiff_t>(zone), normalised.end(), ':'),
            normalised.end());
    return parse<seconds>(normalised, m_beginsWithDayName, m_parseFormat);
}

} // namespace virlo
