#pragma once

#include "DateFormatter.h"

#include <memory>
#include <string>

/// Date formatters in the server's language, one for each pattern in the whole process. Any thread.
namespace VIRLOTimestamp
{
/// Reads and writes in the device's zone unless the pattern carries one. Kept for ever: patterns must not
/// come from outside.
[[nodiscard]] std::shared_ptr<const virlo::DateFormatter>
VIRLO_cachedFormatterForDateFormat(const std::string& format);
} // namespace VIRLOTimestamp
