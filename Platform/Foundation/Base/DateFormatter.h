#pragma once

#include "Clock.h"

#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// Reads dates by a pattern of the fields yyyy, MM, MMM, dd, HH, mm, ss, SSS (after ss and a quoted point),
/// zzz and, at its beginning, E, of text in single quotes and of any other characters. Names of days and
/// months are English whatever the device's language. Immutable; any thread.
class DateFormatter
{
public:
    /// A pattern with any other letter matches no text.
    explicit DateFormatter(std::string dateFormat);

    [[nodiscard]] const std::string& dateFormat() const noexcept { return m_dateFormat; }

    /// Nothing where the text does not match the whole pattern or is no date of the calendar; the name of the
    /// day need not agree with the date. Without zzz the time is in the device's time zone; zzz takes a
    /// common abbreviation ("GMT", "PST", "CEST") or an offset
    /// ("GMT+05:30"). A date after the year 2261, which `Date` cannot hold, is clamped.
    [[nodiscard]] std::optional<Date> dateFromString(std::string_view text) const;

private:
    std::string m_dateFormat;
    std::string m_parseFormat; ///< the fields after E as strftime writes them; empty for an unknown pattern
    bool m_beginsWithDayName = false;
    bool m_hasMilliseconds = false;
};

} // namespace virlo
