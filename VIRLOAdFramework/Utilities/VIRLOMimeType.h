#pragma once

#include <string>
#include <string_view>

/// A MIME type derived from the first byte alone.
namespace VIRLOMimeType
{
/// "application/octet-stream" for an unknown first byte and for empty data.
[[nodiscard]] std::string mimeType(std::string_view bytes);
} // namespace VIRLOMimeType
