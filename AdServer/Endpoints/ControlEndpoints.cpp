#include "ControlEndpoints.h"

#include "AdServer.h"
#include "JSONText.h"
#include "SessionTable.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace adserver
{

namespace
{

bool isThisMachine(const std::string& origin)
{
    const auto host = origin.substr(origin.find("//") + 2);
    const auto name = host.substr(0, host.find(':', host.starts_with('[') ? host.find(']') : 0));
    return name == "localhost" || name == "127.0.0.1" || name == "[::1]";
}

} // namespace

ControlEndpoints::ControlEndpoints(AdServer& server, const SessionTable& sessions) : m_server(server)
{
    const auto simply = [](auto work) {
        return [work](const ServerRequest&) {
            work();
            return Answer::nothing();
        };
    };
    m_operations = {
        {{"POST", "faults"}, [this](const ServerRequest& request) { return setFaults(request); }},
        {{"DELETE", "faults"}, simply([this] { m_server.clearFaults(); })},
        {{"GET", "exchanges"}, [this](const ServerRequest&) { return exchanges(); }},
        {{"DELETE", "exchanges"}, simply([this] { m_server.clearExchanges(); })},
        {{"GET", "sessions"},
         [&sessions](const ServerRequest&) { return Answer::json(sessions.describe()); }},
        {{"DELETE", "sessions"}, simply([this] { m_server.expireSessions(); })},
        {{"PUT", "ping-interval"}, [this](const ServerRequest& request) { return setPingInterval(request); }},
        {{"POST", "rewards"}, simply([this] { m_server.grantRewards(); })},
        {{"POST", "reset"}, simply([this] { m_server.reset(); })},
    };
}

std::optional<Answer> ControlEndpoints::answer(const ServerRequest& request) const
{
    if (!isControlPath(request.path))
        return std::nullopt;
    if (!request.header("origin").empty() || !isThisMachine(request.origin))
        return Answer::error(403, "FORBIDDEN");
    const auto name = request.path.substr(request.path.find('/', 1) + 1);
    if (const auto operation = m_operations.find({request.method, name}); operation != m_operations.end())
        return operation->second(request);
    const bool known = std::any_of(m_operations.begin(), m_operations.end(),
                                   [&](const auto& entry) { return entry.first.second == name; });
    return known ? Answer::error(405, "METHOD_NOT_ALLOWED") : Answer::notFound();
}

Answer ControlEndpoints::setFaults(const ServerRequest& request) const
{
    try {
        const auto value = parseJSON(request.body);
        std::vector<AdServerFault> faults;
        for (const auto& element : value.is_array() ? value : nlohmann::json::array({value}))
            faults.push_back(AdServerFault::fromJSON(element));
        for (const auto& fault : faults)
            m_server.setFault(fault);
        return Answer::nothing();
    } catch (const std::invalid_argument& error) {
        return Answer::badRequest(error.what());
    }
}

Answer ControlEndpoints::setPingInterval(const ServerRequest& request) const
{
    constexpr double longest = 86400;
    const auto value = parseJSONIfPossible(request.body);
    const auto seconds =
        value && value->is_object() ? value->value("seconds", nlohmann::json()) : nlohmann::json();
    if (!seconds.is_number() || seconds.get<double>() < 0 || seconds.get<double>() > longest)
        return Answer::badRequest("\"seconds\" must be a number from 0 to 86400");
    m_server.setPingInterval(
        std::chrono::milliseconds(static_cast<std::int64_t>(seconds.get<double>() * 1000)));
    return Answer::nothing();
}

Answer ControlEndpoints::exchanges() const
{
    auto list = nlohmann::ordered_json::array();
    for (const auto& exchange : m_server.exchanges()) {
        auto value = exchange.toJSON();
        value["headers"] = exchange.headers;
        value["connection"] = exchange.connection;
        list.push_back(std::move(value));
    }
    Answer answer;
    answer.contentType = "application/json";
    answer.text = printJSON(list);
    return answer;
}

} // namespace adserver
