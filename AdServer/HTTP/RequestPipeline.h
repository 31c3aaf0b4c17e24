#pragma once

#include "ClientConnection.h"
#include "Endpoint.h"
#include "FaultTable.h"
#include "RequestLog.h"
#include "TransactionTrace.h"

#include <httplib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace adserver
{

/// From request to response: first the faults set for its path, then the endpoints. Safe from any thread.
class RequestPipeline
{
public:
    using Endpoints = std::vector<std::unique_ptr<Endpoint>>;

    /// `scheme` is "https" or "http".
    RequestPipeline(FaultTable& faults, RequestLog& log, TransactionTrace& trace, Endpoints endpoints,
                    std::string scheme, std::function<TimePoint()> clock);

    /// Nothing: the connection has been broken off.
    [[nodiscard]] std::optional<Response> respond(const httplib::Request& request,
                                                  ClientConnection& connection) const;

private:
    [[nodiscard]] std::optional<Response> respondWithFaults(const ServerRequest& request,
                                                            ClientConnection& connection) const;
    [[nodiscard]] Response ask(const ServerRequest& request) const;
    [[nodiscard]] std::optional<std::string> origin(const httplib::Request& request) const;

    FaultTable& m_faults;
    RequestLog& m_log;
    TransactionTrace& m_trace;
    const Endpoints m_endpoints;
    const std::string m_scheme;
    const std::function<TimePoint()> m_clock;
};

} // namespace adserver
