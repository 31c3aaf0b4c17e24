#pragma once

#include <string>

/// Text passed in by the host. Any thread.
namespace VIRLOHostText
{
/// `text` with every invalid UTF-8 byte replaced by U+FFFD; with such a byte, a request body could not be
/// encoded.
[[nodiscard]] std::string wellFormed(const std::string& text);
} // namespace VIRLOHostText
