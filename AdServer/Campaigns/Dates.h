#pragma once

#include <chrono>
#include <string>

namespace adserver
{

using TimePoint = std::chrono::system_clock::time_point;

/// "2016-03-01T10:20:30.123Z" in the machine's own zone: clients read the final "Z" as a letter and the time
/// in theirs, which on a loopback server is the same.
[[nodiscard]] std::string sessionTimestamp(TimePoint time);
/// "Tue Mar 01 10:20:30 GMT 2016".
[[nodiscard]] std::string advertisementDate(TimePoint time);
/// "2016-03-01T10:20:30.123Z" in universal time.
[[nodiscard]] std::string logTimestamp(TimePoint time);

} // namespace adserver
