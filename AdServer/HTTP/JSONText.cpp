#include "JSONText.h"

#include <stdexcept>

namespace adserver
{

nlohmann::json parseJSON(std::string_view text)
{
    using nlohmann::json;
    const auto watchDepth = [](int depth, json::parse_event_t, const json&) {
        if (depth > deepestJSON)
            throw std::invalid_argument("nested too deeply");
        return true;
    };
    try {
        return json::parse(text, watchDepth);
    } catch (const json::exception& error) {
        const std::string_view what = error.what();
        const auto end = what.find("] ");
        throw std::invalid_argument(std::string(end == what.npos ? what : what.substr(end + 2)));
    }
}

std::optional<nlohmann::json> parseJSONIfPossible(std::string_view text)
{
    try {
        return parseJSON(text);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

std::string printJSON(const nlohmann::json& value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string printJSON(const nlohmann::ordered_json& value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string textAt(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

} // namespace adserver
