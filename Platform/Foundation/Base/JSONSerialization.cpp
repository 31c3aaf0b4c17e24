#include "JSON.h"

#include "Error.h"

#include <algorithm>

namespace virlo
{

namespace
{

Error failure(std::string reason)
{
    // The parser quotes the token that it failed on, which may be the whole input and need not be text.
    constexpr std::size_t longest = 200;
    reason.resize(std::min(reason.size(), longest));
    std::replace_if(
        reason.begin(), reason.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '?');
    return {JSONSerialization::errorDomain, 0, {{"Reason", std::move(reason)}}};
}

/// Looked at before the parser builds anything: what it builds is copied and written recursively later.
const char* excess(std::string_view text)
{
    int depth = 0;
    std::size_t values = 1;
    bool insideString = false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char byte = text[index];
        if (insideString) {
            if (byte == '\\')
                ++index;
            else if (byte == '"')
                insideString = false;
            continue;
        }
        if (byte == '"')
            insideString = true;
        else if (byte == ']' || byte == '}')
            --depth;
        else if (byte == ',' && ++values > JSONSerialization::maximumValues)
            return "too many values";
        else if ((byte == '[' || byte == '{') && ++depth > JSONSerialization::maximumDepth)
            return "nested too deeply";
    }
    return nullptr;
}

} // namespace

std::variant<JSON, Error> JSONSerialization::objectWithData(std::string_view text)
{
    if (const char* const reason = excess(text))
        return failure(reason);
    try {
        return JSON::parse(text);
    } catch (const JSON::exception& error) {
        return failure(error.what());
    }
}

std::variant<std::string, Error> JSONSerialization::dataWithObject(const JSON& object)
{
    try {
        return object.dump();
    } catch (const JSON::exception& error) {
        return failure(error.what());
    }
}

} // namespace virlo
