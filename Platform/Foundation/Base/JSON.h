#pragma once

#include <nlohmann/json.hpp>

namespace virlo
{

using JSON = nlohmann::json;

} // namespace virlo
