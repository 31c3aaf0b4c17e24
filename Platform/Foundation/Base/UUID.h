#pragma once

#include <string>
#include <string_view>

namespace virlo::UUID
{

/// A random UUID (version 4) from the kernel's generator, in upper case.
[[nodiscard]] std::string random();
/// Whether `text` has the form of a UUID: 36 characters, hexadecimal digits of either case in groups of
/// 8-4-4-4-12.
[[nodiscard]] bool isValid(std::string_view text);

} // namespace virlo::UUID
