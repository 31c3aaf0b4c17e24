#pragma once

#include "Export.h"

#include <functional>
#include <string_view>

namespace virlo
{

/// Writes one message to the system's log: one line on standard error, prefixed with date, time and process.
/// Line ends, control characters and bytes that are not UTF-8 are escaped, so a server cannot forge lines;
/// one line end at the end of the message is dropped. Blocks for the write, at most a second where nobody
/// reads. Any thread; lines of several threads are never interleaved.
VIRLO_EXPORT void systemLog(std::string_view message);

/// Sends messages elsewhere (a host's own log), escaped but without the prefix; null restores standard error.
/// `sink` is called on any thread, one call at a time; what it logs itself goes to standard error. After this
/// has returned, the previous sink is not called any more.
VIRLO_EXPORT void setSystemLogSink(std::function<void(std::string_view message)> sink);

} // namespace virlo
