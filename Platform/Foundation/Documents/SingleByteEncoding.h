#pragma once

#include <array>
#include <optional>
#include <string>

namespace virlo::SingleByteEncoding
{

/// The Unicode character of each byte, -1 where a byte stands for none, of an encoding of the Windows,
/// ISO-8859 or KOI8 family; nothing for any other name, or where the system has no table of it. Any thread.
[[nodiscard]] std::optional<std::array<int, 256>> table(const std::string& name);

} // namespace virlo::SingleByteEncoding
