#pragma once

#include <string>

/// Text that the host hands in. Any thread.
namespace VIRLOHostText
{
/// `text` with every byte that is no UTF-8 replaced by U+FFFD: one such byte would make a whole request body
/// impossible to write.
[[nodiscard]] std::string wellFormed(const std::string& text);
} // namespace VIRLOHostText
