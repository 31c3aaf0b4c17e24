#pragma once

#include "Endpoint.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace adserver
{

class AdServer;
class CampaignCatalogue;
class FaultTable;
class SessionTable;

/// What scripts drive the running server with, below /control/; the same operations as `AdServer`'s own.
/// Refused to web pages, which a browser marks by an "Origin", and under any name but this machine's own.
/// Safe from any thread.
///
///     POST   /control/faults          204; the body is a fault, or an array of them
///     GET    /control/faults          200 the faults in force, as asked, each with its "number"
///     DELETE /control/faults          204
///     DELETE /control/faults/NUMBER   204; 404
///     GET    /control/campaigns       200 the campaigns as an array
///     POST   /control/next            204; the body is {"placement": "LevelUp", "campaign": "summit.json"}
///     GET    /control/requests        200 the request log as an array, with headers and connection
///     DELETE /control/requests        204
///     GET    /control/sessions        200 the open sessions as an array
///     DELETE /control/sessions        204; all of them expire
///     PUT    /control/ping-interval   204; the body is {"seconds": 2.5}
///     POST   /control/rewards         204; every reward is due
///     POST   /control/reset           204
class ControlEndpoints final : public Endpoint
{
public:
    ControlEndpoints(AdServer& server, const SessionTable& sessions, CampaignCatalogue& campaigns,
                     FaultTable& faults);

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

    /// The same without the check of who asks.
    [[nodiscard]] Response perform(const ServerRequest& request) const;

    [[nodiscard]] static bool isControlPath(const std::string& path) { return path.starts_with("/control/"); }

private:
    using Operation = std::function<Response(const ServerRequest&)>;

    [[nodiscard]] Response setFaults(const ServerRequest& request) const;
    [[nodiscard]] Response setPingInterval(const ServerRequest& request) const;
    [[nodiscard]] Response requests() const;
    [[nodiscard]] Response faults() const;
    [[nodiscard]] Response serveNext(const ServerRequest& request) const;

    AdServer& m_server;
    CampaignCatalogue& m_campaigns;
    FaultTable& m_faults;
    /// By method and path.
    std::map<std::pair<std::string, std::string>, Operation> m_operations;
};

} // namespace adserver
