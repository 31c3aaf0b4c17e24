#pragma once

#include "Clock.h"

#include <algorithm>
#include <cmath>

namespace virlo::ReferenceDate
{

// Property lists count seconds from 2001-01-01 00:00:00 UTC.

inline constexpr double secondsSince1970 = 978307200;

[[nodiscard]] inline double secondsFromDate(Date date)
{
    return Seconds(date.time_since_epoch()).count() - secondsSince1970;
}

/// To the microsecond; what `Date` cannot hold becomes its end, NaN the reference date itself.
[[nodiscard]] inline Date dateFromSeconds(double seconds)
{
    constexpr double last = 9.2e9;
    const double since1970 =
        std::clamp(std::isnan(seconds) ? secondsSince1970 : seconds + secondsSince1970, -last, last);
    return Date(std::chrono::microseconds(std::llround(since1970 * 1e6)));
}

} // namespace virlo::ReferenceDate
