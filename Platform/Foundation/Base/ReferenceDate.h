#pragma once

#include "Clock.h"

namespace virlo::ReferenceDate
{

// Property lists and measurements count seconds from 2001-01-01 00:00:00 UTC. Computed in floating point: the
// device's clock may be set to any date.

inline constexpr double secondsSince1970 = 978307200;

[[nodiscard]] inline double secondsFromDate(Date date)
{
    return Seconds(date.time_since_epoch()).count() - secondsSince1970;
}

/// Any number of 32 bits gives a date.
[[nodiscard]] inline Date dateFromSeconds(std::int32_t seconds)
{
    return Date(std::chrono::seconds(seconds + static_cast<std::int64_t>(secondsSince1970)));
}

} // namespace virlo::ReferenceDate
