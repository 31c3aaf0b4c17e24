#pragma once

#include "ControlEndpoints.h"
#include "RequestLog.h"
#include "Response.h"
#include "ServerRequest.h"
#include "VASTExplainer.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace adserver
{

/// The inspector page and what it asks of the server, on a plain-HTTP port of its own: browsers do not know
/// the server's authority, and the page's requests stay out of the log and of the faults. Takes exactly the
/// port's own address as Host, and as Origin from whoever sends one; without an Origin it only reads. Safe
/// from any thread.
///
///     GET /                  200 the page, or one line where the build left it out
///     GET /events            200 server-sent events: "began", "ended", "cleared", "faults", "reload"
///     GET /records           200 the requests' summaries
///     GET /records/all       200 the same with headers and bodies, as the log has them
///     GET /records/ID        200 one request with headers and bodies; 404
///     GET /records/ID/vast   200 what `vast-inspect --explain` says of the document and of what its
///                              wrappers led to in the same transaction; 404, 501, 502
///     GET /configuration     200 {"origin","liveView"}
///     …   /control/…         the control path
class InspectorResponder
{
public:
    /// `liveView` is the address of the host's frames; `origin` is the ad server's own.
    InspectorResponder(const ControlEndpoints& control, RequestLog& log, std::string liveView);

    /// Told once the ports are known; until then everything is refused.
    void setAddresses(std::string own, std::string adServer);

    [[nodiscard]] Response respond(const ServerRequest& request) const;

private:
    [[nodiscard]] Response read(const ServerRequest& request) const;
    [[nodiscard]] Response record(const std::string& rest) const;
    [[nodiscard]] Response explain(const RequestLogEntry& entry) const;

    const ControlEndpoints& m_control;
    RequestLog& m_log;
    const VASTExplainer m_explainer;
    const std::string m_liveView;
    mutable std::mutex m_mutex; ///< guards the following: the port is open before it is known
    std::string m_ownAddress;
    std::string m_adServer;
};

} // namespace adserver
