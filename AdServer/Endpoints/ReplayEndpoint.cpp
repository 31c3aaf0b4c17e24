#include "ReplayEndpoint.h"

#include "JSONText.h"
#include "RequestLogEntry.h"
#include "URLText.h"

#include <fstream>
#include <stdexcept>

namespace adserver
{

namespace
{

std::string queryText(const ServerRequest& request)
{
    std::string text;
    for (const auto& [name, value] : request.query)
        text.append(name).append(1, '=').append(value).append(1, '&');
    return text;
}

/// What the log has of it can be sent again.
bool isWhole(const nlohmann::json& record)
{
    const auto body = textAt(record, "responseBody");
    if (body.size() >= RequestLogEntry::longestLoggedBody ||
        !record.value("fault", nlohmann::json()).is_null())
        return false;
    const auto headers = record.value("responseHeaders", nlohmann::json::object());
    return !body.empty() || textAt(headers, "content-length") == "0" || record.value("status", 0) == 204;
}

/// The dates of an advertisement's response, from now on.
void renewDates(std::string& body, TimePoint now)
{
    constexpr auto validity = std::chrono::hours(1);
    auto value = parseJSONIfPossible(body);
    if (!value || !value->is_object() || !value->contains("validUntil"))
        return;
    (*value)["timestamp"] = advertisementDate(now);
    (*value)["validUntil"] = advertisementDate(now + validity);
    body = printJSON(*value);
}

} // namespace

ReplayEndpoint::ReplayEndpoint(const std::filesystem::path& log)
{
    if (log.empty())
        return;
    std::ifstream stream(log);
    if (!stream)
        throw std::runtime_error("cannot read the log " + log.string());
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        auto record = parseJSONIfPossible(line);
        if (!record || !record->is_object() || !record->contains("path"))
            throw std::runtime_error(log.string() + ", line " + std::to_string(number) + ": no request");
        if (!isWhole(*record))
            continue;
        const auto key = textAt(*record, "method") + ' ' + textAt(*record, "path");
        // As the HTTP layer reads the query, so that order and encoding do not matter.
        ServerRequest request;
        request.query = RequestLogEntry::queryItems(textAt(*record, "query"));
        m_responses[key + '?' + queryText(request)].push_back(*record);
        m_responses[key].push_back(std::move(*record));
    }
}

std::optional<Response> ReplayEndpoint::respond(const ServerRequest& request) const
{
    const auto record = take(request);
    if (!record)
        return std::nullopt;
    const auto headers = record->value("responseHeaders", nlohmann::json::object());
    Response response;
    response.status = record->value("status", 200);
    response.contentType = textAt(headers, "content-type");
    response.text = textAt(*record, "responseBody");
    const auto host = textAt(record->value("headers", nlohmann::json::object()), "host");
    const auto readdress = [&](std::string& text) {
        for (const auto* scheme : {"https://", "http://"})
            if (!host.empty() && scheme + host != request.origin)
                fillIn(text, scheme + host + '/', request.origin + '/');
    };
    readdress(response.text);
    renewDates(response.text, request.now);
    if (auto location = textAt(headers, "location"); !location.empty()) {
        readdress(location);
        response.headers["Location"] = location;
    }
    if (request.path == "/ad/req")
        if (const auto advertisement = parseJSONIfPossible(response.text))
            response.transaction = textAt(*advertisement, "txid");
    return response;
}

std::optional<nlohmann::json> ReplayEndpoint::take(const ServerRequest& request) const
{
    const std::lock_guard lock(m_mutex);
    const auto key = request.method + ' ' + request.path;
    auto found = m_responses.find(key + '?' + queryText(request));
    if (found == m_responses.end())
        found = m_responses.find(key);
    if (found == m_responses.end())
        return std::nullopt;
    auto record = found->second.front();
    if (found->second.size() > 1)
        found->second.pop_front();
    return record;
}

} // namespace adserver
