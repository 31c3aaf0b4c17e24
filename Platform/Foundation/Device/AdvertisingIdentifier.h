#pragma once

#include "Export.h"

#include <optional>
#include <string>

namespace virlo
{

/// The advertising identifier. The host owns it and the user's choice about it: by default there is none, and
/// none is sent. Any thread.
namespace AdvertisingIdentifier
{
/// A UUID; nothing where the host withholds it.
[[nodiscard]] VIRLO_EXPORT std::optional<std::string> current();
/// Sets the platform's own identifier. A UUID of zeros withholds it, as does text that is not a UUID, which
/// is logged.
VIRLO_EXPORT void set(std::string uuid);
/// Sets and returns a new random one, kept for this process; the host stores it if it is to last longer.
VIRLO_EXPORT std::string renew();
/// No identifier is sent from now on.
VIRLO_EXPORT void withhold();
} // namespace AdvertisingIdentifier

} // namespace virlo
