#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace adserver
{

/// Deeper texts are refused: printing and comparing walk a value by recursion.
constexpr int deepestJSON = 100;

/// Throws std::invalid_argument with the position and the reason.
[[nodiscard]] nlohmann::json parseJSON(std::string_view text);
/// Nothing in place of the exception.
[[nodiscard]] std::optional<nlohmann::json> parseJSONIfPossible(std::string_view text);
/// One line; bytes that are no UTF-8 come out as the replacement character.
[[nodiscard]] std::string printJSON(const nlohmann::json& value);
[[nodiscard]] std::string printJSON(const nlohmann::ordered_json& value);
/// Empty when the key is absent or no text.
[[nodiscard]] std::string textAt(const nlohmann::json& object, const char* key);

} // namespace adserver
