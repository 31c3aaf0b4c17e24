#include "RequestLogEntry.h"

#include "Dates.h"
#include "JSONText.h"

#include <httplib.h>

namespace adserver
{

namespace
{

constexpr std::size_t longestLoggedBody = 65536;

nlohmann::json bodyAsJSON(const std::string& body)
{
    if (body.empty())
        return nullptr;
    if (body.size() > longestLoggedBody)
        return body.substr(0, longestLoggedBody);
    return parseJSONIfPossible(body).value_or(nlohmann::json(body));
}

} // namespace

std::string RequestLogEntry::queryItem(const std::string& name) const
{
    httplib::Params items;
    httplib::detail::parse_query_text(query, items);
    const auto found = items.find(name);
    return found == items.end() ? std::string() : found->second;
}

nlohmann::ordered_json RequestLogEntry::toJSON() const
{
    return {{"time", logTimestamp(time)},
            {"method", method},
            {"path", path},
            {"query", query},
            {"session", session.empty() ? nlohmann::json() : nlohmann::json(session)},
            {"body", bodyAsJSON(body)},
            {"status", status},
            {"bytes", bytes}};
}

} // namespace adserver
