#pragma once

#include "GstPointers.h"

#include <string>

namespace virlo
{

/// The certificate authorities that TLS trusts for clips: the system's and those of `file`, or null where
/// `file` is empty (the system's alone, which GStreamer takes by itself) or cannot be read. Kept from call to
/// call. Reads the disk: never on the main thread.
[[nodiscard]] GstPointer<GTlsDatabase> mediaAuthorities(const std::string& file);

} // namespace virlo
