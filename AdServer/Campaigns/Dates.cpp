#include "Dates.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace adserver
{

namespace
{

constexpr std::array<const char*, 7> dayNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> monthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::tm universal(TimePoint time)
{
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    return parts;
}

std::string withMilliseconds(const std::tm& parts, TimePoint time)
{
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
    const auto milliseconds =
        static_cast<int>((sinceEpoch % 1000 + std::chrono::milliseconds(1000)).count() % 1000);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, milliseconds);
    return text.data();
}

} // namespace

std::string sessionTimestamp(TimePoint time)
{
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    return withMilliseconds(parts, time);
}

std::string advertisementDate(TimePoint time)
{
    const auto parts = universal(time);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%s %s %02d %02d:%02d:%02d GMT %04d",
                  dayNames.at(static_cast<std::size_t>(parts.tm_wday)),
                  monthNames.at(static_cast<std::size_t>(parts.tm_mon)), parts.tm_mday, parts.tm_hour,
                  parts.tm_min, parts.tm_sec, parts.tm_year + 1900);
    return text.data();
}

std::string logTimestamp(TimePoint time)
{
    return withMilliseconds(universal(time), time);
}

} // namespace adserver
