#pragma once

#include <string>

namespace virlo
{

/// The Olson name of this process's time zone: from TZ, else from the system's `/etc/localtime` or
/// `/etc/timezone`. Where these name no known zone (a POSIX rule, a copy of a zone's file), the present UTC
/// offset as "GMT+05:30", or "Etc/UTC". Any thread.
[[nodiscard]] std::string hostTimeZone();

} // namespace virlo
