#include "ControlEndpoints.h"

#include "AdServer.h"
#include "CampaignCatalogue.h"
#include "FaultTable.h"
#include "JSONText.h"
#include "SessionTable.h"

#include <algorithm>
#include <charconv>
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

ControlEndpoints::ControlEndpoints(AdServer& server, const SessionTable& sessions,
                                   CampaignCatalogue& campaigns, FaultTable& faults)
    : m_server(server)
    , m_campaigns(campaigns)
    , m_faults(faults)
{
    const auto simply = [](auto work) {
        return [work](const ServerRequest&) {
            work();
            return Response::nothing();
        };
    };
    m_operations = {
        {{"POST", "faults"}, [this](const ServerRequest& request) { return setFaults(request); }},
        {{"GET", "faults"}, [this](const ServerRequest&) { return this->faults(); }},
        {{"GET", "campaigns"},
         [this](const ServerRequest&) { return Response::json(m_campaigns.describe()); }},
        {{"POST", "next"}, [this](const ServerRequest& request) { return serveNext(request); }},
        {{"DELETE", "faults"}, simply([this] { m_server.clearFaults(); })},
        {{"GET", "requests"}, [this](const ServerRequest&) { return requests(); }},
        {{"DELETE", "requests"}, simply([this] { m_server.clearRequests(); })},
        {{"GET", "sessions"},
         [&sessions](const ServerRequest&) { return Response::json(sessions.describe()); }},
        {{"DELETE", "sessions"}, simply([this] { m_server.expireSessions(); })},
        {{"PUT", "ping-interval"}, [this](const ServerRequest& request) { return setPingInterval(request); }},
        {{"POST", "rewards"}, simply([this] { m_server.grantRewards(); })},
        {{"POST", "reset"}, simply([this] { m_server.reset(); })},
    };
}

std::optional<Response> ControlEndpoints::respond(const ServerRequest& request) const
{
    if (!isControlPath(request.path))
        return std::nullopt;
    if (!request.header("origin").empty() || !isThisMachine(request.origin))
        return Response::error(403, "FORBIDDEN");
    return perform(request);
}

Response ControlEndpoints::perform(const ServerRequest& request) const
{
    const auto name = request.path.substr(request.path.find('/', 1) + 1);
    if (const auto operation = m_operations.find({request.method, name}); operation != m_operations.end())
        return operation->second(request);
    constexpr std::string_view oneFault = "faults/";
    if (request.method == "DELETE" && name.starts_with(oneFault)) {
        std::uint64_t number = 0;
        std::from_chars(name.data() + oneFault.size(), name.data() + name.size(), number);
        return m_faults.remove(number) ? Response::nothing() : Response::notFound();
    }
    const bool known = std::any_of(m_operations.begin(), m_operations.end(),
                                   [&](const auto& entry) { return entry.first.second == name; });
    return known ? Response::error(405, "METHOD_NOT_ALLOWED") : Response::notFound();
}

Response ControlEndpoints::setFaults(const ServerRequest& request) const
{
    try {
        const auto value = parseJSON(request.body);
        std::vector<AdServerFault> faults;
        for (const auto& element : value.is_array() ? value : nlohmann::json::array({value}))
            faults.push_back(AdServerFault::fromJSON(element));
        for (const auto& fault : faults)
            m_server.setFault(fault);
        return Response::nothing();
    } catch (const std::invalid_argument& error) {
        return Response::badRequest(error.what());
    }
}

Response ControlEndpoints::faults() const
{
    auto list = nlohmann::json::array();
    for (const auto& [number, fault] : m_faults.list()) {
        auto value = fault.toJSON();
        value["number"] = number;
        list.push_back(std::move(value));
    }
    return Response::json(list);
}

Response ControlEndpoints::serveNext(const ServerRequest& request) const
{
    const auto value = parseJSONIfPossible(request.body);
    const auto placement = value ? textAt(*value, "placement") : std::string();
    if (placement.empty())
        return Response::badRequest("\"placement\" is missing");
    if (!m_campaigns.serveNext(placement, textAt(*value, "campaign")))
        return Response::badRequest("\"campaign\" names no campaign");
    return Response::nothing();
}

Response ControlEndpoints::setPingInterval(const ServerRequest& request) const
{
    constexpr double longest = 86400;
    const auto value = parseJSONIfPossible(request.body);
    const auto seconds =
        value && value->is_object() ? value->value("seconds", nlohmann::json()) : nlohmann::json();
    if (!seconds.is_number() || seconds.get<double>() < 0 || seconds.get<double>() > longest)
        return Response::badRequest("\"seconds\" must be a number from 0 to 86400");
    m_server.setPingInterval(
        std::chrono::milliseconds(static_cast<std::int64_t>(seconds.get<double>() * 1000)));
    return Response::nothing();
}

Response ControlEndpoints::requests() const
{
    auto list = nlohmann::ordered_json::array();
    for (const auto& entry : m_server.requests())
        list.push_back(entry.toJSON());
    Response response;
    response.contentType = "application/json";
    response.text = printJSON(list);
    return response;
}

} // namespace adserver
