#pragma once

#include "Export.h"

#include <functional>
#include <string_view>

namespace virlo
{

/// Writes one message to the system's log: standard error, one line, with the moment and the process before
/// it. Line ends, control characters and bytes that are no UTF-8 are shown escaped, so a server cannot forge
/// lines; one line end that closes the message is dropped. Blocks for the write. Any thread; messages never
/// mix.
VIRLO_EXPORT void systemLog(std::string_view message);

/// Sends messages elsewhere (a host's own log), escaped but without the prefix; null restores standard error.
/// `sink` is called from any thread, one call at a time; what it logs itself goes to standard error. Once
/// this has returned on another thread, the sink before is not called any more.
VIRLO_EXPORT void setSystemLogSink(std::function<void(std::string_view message)> sink);

} // namespace virlo
