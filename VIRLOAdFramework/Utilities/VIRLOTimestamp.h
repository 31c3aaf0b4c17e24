#pragma once

#include "DateFormatter.h"

#include <memory>
#include <string>

/// The process's date formatters, one for each format. Any thread.
namespace VIRLOTimestamp
{
/// Kept until the process ends: formats must not come from outside.
[[nodiscard]] std::shared_ptr<const virlo::DateFormatter>
VIRLO_cachedFormatterForDateFormat(const std::string& format);
} // namespace VIRLOTimestamp
