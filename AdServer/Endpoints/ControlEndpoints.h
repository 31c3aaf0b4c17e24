#pragma once

#include "Response.h"
#include "ServerRequest.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace adserver
{

class AdServer;
class SessionTable;

/// What scripts drive the running server with, below /control/; the same operations as `AdServer`'s own.
/// Refused to web pages, which a browser marks by an "Origin", and under any name but this machine's own.
/// Safe from any thread.
///
///     POST   /control/faults          a fault, or an array of them   204
///     DELETE /control/faults                                         204
///     GET    /control/requests                                      200 [entry, …], headers and
///     connection too DELETE /control/requests                                      204 GET
///     /control/sessions                                       200 [session, …] DELETE /control/sessions all
///     of them expire             204 PUT    /control/ping-interval   {"seconds": 2.5}               204 POST
///     /control/rewards         every reward is due            204 POST   /control/reset 204
class ControlEndpoints
{
public:
    ControlEndpoints(AdServer& server, const SessionTable& sessions);

    /// Nothing when the path is not below /control/.
    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const;

    [[nodiscard]] static bool isControlPath(const std::string& path) { return path.starts_with("/control/"); }

private:
    using Operation = std::function<Response(const ServerRequest&)>;

    [[nodiscard]] Response setFaults(const ServerRequest& request) const;
    [[nodiscard]] Response setPingInterval(const ServerRequest& request) const;
    [[nodiscard]] Response requests() const;

    AdServer& m_server;
    /// By method and path.
    std::map<std::pair<std::string, std::string>, Operation> m_operations;
};

} // namespace adserver
