#pragma once

#include <string>
#include <string_view>

/// A kind of content guessed from its first byte alone.
namespace VIRLOMimeType
{
/// "application/octet-stream" where the byte is none of the known ones, and for no bytes at all.
[[nodiscard]] std::string mimeType(std::string_view bytes);
} // namespace VIRLOMimeType
