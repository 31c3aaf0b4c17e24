#pragma once

#include <string>

namespace adserver
{

/// 32 lower-case hexadecimal digits that nobody can guess.
[[nodiscard]] std::string randomIdentifier();

} // namespace adserver
