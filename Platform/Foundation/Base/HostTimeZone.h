#pragma once

#include <string>

namespace virlo
{

/// The Olson name of the zone that this process lives in: TZ's, else that of the system's `/etc/localtime` or
/// `/etc/timezone`. Where these name none that is known (a rule written out, a bare copy of a zone's file),
/// the distance to Greenwich that holds now, as "GMT+05:30", or "Etc/UTC". Any thread.
[[nodiscard]] std::string hostTimeZone();

} // namespace virlo
