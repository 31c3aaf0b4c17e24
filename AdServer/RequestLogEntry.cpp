#include "RequestLogEntry.h"

#include "AdServerFault.h"
#include "Dates.h"
#include "JSONText.h"

#include <httplib.h>

namespace adserver
{

namespace
{

nlohmann::json textOrNull(const std::string& text)
{
    return text.empty() ? nlohmann::json() : nlohmann::json(text);
}

nlohmann::json bodyAsJSON(const std::string& body)
{
    if (body.size() > RequestLogEntry::longestLoggedBody)
        return body.substr(0, RequestLogEntry::longestLoggedBody);
    return parseJSONIfPossible(body).value_or(textOrNull(body));
}

} // namespace

std::multimap<std::string, std::string> RequestLogEntry::queryItems(const std::string& query)
{
    httplib::Params items;
    httplib::detail::parse_query_text(query, items);
    return items;
}

std::string RequestLogEntry::queryItem(const std::string& name) const
{
    const auto items = queryItems(query);
    const auto found = items.find(name);
    return found == items.end() ? std::string() : found->second;
}

nlohmann::ordered_json RequestLogEntry::toJSON() const
{
    nlohmann::ordered_json line{{"time", logTimestamp(time)},
                                {"method", method},
                                {"path", path},
                                {"query", query},
                                {"session", textOrNull(session)},
                                {"body", bodyAsJSON(body)},
                                {"status", status},
                                {"bytes", bytes},
                                {"id", id},
                                {"end", logTimestamp(end)},
                                {"transaction", textOrNull(transaction)},
                                {"fault", nullptr},
                                {"connection", connection},
                                {"headers", headers},
                                {"responseHeaders", responseHeaders},
                                {"responseBody", textOrNull(responseBody)}};
    if (fault)
        line["fault"] = fault->toJSON();
    return line;
}

nlohmann::ordered_json RequestLogEntry::summary() const
{
    const auto found = responseHeaders.find("content-type");
    const auto type = found == responseHeaders.end() ? std::string() : found->second;
    const bool isDocument =
        path == "/ad/req" || path.starts_with("/ad/more/") || type.find("xml") != std::string::npos;
    nlohmann::ordered_json line{{"id", id},
                                {"time", logTimestamp(time)},
                                {"method", method},
                                {"path", path},
                                {"query", query},
                                {"session", textOrNull(session)},
                                {"transaction", textOrNull(transaction)},
                                {"connection", connection}};
    if (end == decltype(end)())
        return line;
    line["end"] = logTimestamp(end);
    line["status"] = status;
    line["bytes"] = bytes;
    line["type"] = type;
    line["fault"] = nullptr;
    if (fault)
        line["fault"] = fault->toJSON();
    if (isDocument)
        line["responseBody"] = textOrNull(responseBody);
    return line;
}

} // namespace adserver
