#pragma once

#include "AdEndpoints.h"
#include "ClientConnection.h"
#include "ControlEndpoints.h"
#include "FaultTable.h"
#include "FileEndpoint.h"
#include "RequestLog.h"
#include "Response.h"
#include "ServerRequest.h"
#include "StorePage.h"
#include "VASTEndpoints.h"

#include <httplib.h>

#include <functional>
#include <optional>
#include <string>

namespace adserver
{

/// From request to response: first the faults set for its path, then the endpoints. Safe from any thread.
class RequestPipeline
{
public:
    struct Stations {
        FaultTable& faults;
        RequestLog& log;
        ControlEndpoints& control;
        AdEndpoints& ads;
        VASTEndpoints& vast;
        FileEndpoint& files;
        StorePage& store;
    };

    /// `scheme` is "https" or "http".
    RequestPipeline(const Stations& stations, std::string scheme, std::function<TimePoint()> clock);

    /// Nothing: the connection has been broken off.
    [[nodiscard]] std::optional<Response> respond(const httplib::Request& request,
                                                  ClientConnection& connection) const;

private:
    [[nodiscard]] Response ask(const httplib::Request& request, const ClientConnection& connection) const;
    [[nodiscard]] std::optional<std::string> origin(const httplib::Request& request) const;

    const Stations m_stations;
    const std::string m_scheme;
    const std::function<TimePoint()> m_clock;
};

} // namespace adserver
