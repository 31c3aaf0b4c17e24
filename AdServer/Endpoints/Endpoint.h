#pragma once

#include "Response.h"
#include "ServerRequest.h"

#include <optional>

namespace adserver
{

/// Serves the requests of some paths. Owned by the server, which asks its endpoints in the order of the list
/// in AdServer.cpp; called on each connection's own thread.
class Endpoint
{
public:
    Endpoint() = default;
    virtual ~Endpoint() = default;
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;

    /// Nothing when the path is none of its own.
    [[nodiscard]] virtual std::optional<Response> respond(const ServerRequest& request) const = 0;
};

} // namespace adserver
