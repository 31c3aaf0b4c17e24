#include "JSONSerialization.h"

#include <algorithm>

namespace virlo
{

namespace
{

Error failure(std::string reason)
{
    // The parser quotes the token it failed on, which may be the whole input and may be binary.
    constexpr std::size_t longest = 200;
    reason.resize(std::min(reason.size(), longest));
    std::replace_if(
        reason.begin(), reason.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '?');
    return {JSONSerialization::errorDomain, 0, {{"Reason", std::move(reason)}}};
}

/// Why `text` is too large, or null. Checked before parsing, because the parsed value is later copied and
/// written recursively.
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
        auto parsed = JSON::parse(text);
        if (!parsed.is_structured())
            return failure("neither an object nor an array at the top level");
        return parsed;
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
