#include "RequestPipeline.h"

#include "ControlEndpoints.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace adserver
{

namespace
{

bool isCanned(const AdServerFault& fault)
{
    return fault.status || fault.body || fault.bodySize;
}

Response cannedResponse(const AdServerFault& fault)
{
    Response response;
    response.status = fault.status.value_or(200);
    response.contentType = fault.contentType.value_or("application/json");
    response.text = fault.body.value_or("");
    if (fault.bodySize)
        response.body = std::make_shared<const FillerBody>(*fault.bodySize);
    return response;
}

} // namespace

RequestPipeline::RequestPipeline(FaultTable& faults, RequestLog& log, TransactionTrace& trace,
                                 Endpoints endpoints, std::string scheme, std::function<TimePoint()> clock)
    : m_faults(faults)
    , m_log(log)
    , m_trace(trace)
    , m_endpoints(std::move(endpoints))
    , m_scheme(std::move(scheme))
    , m_clock(std::move(clock))
{
}

std::optional<Response> RequestPipeline::respond(const httplib::Request& request,
                                                 ClientConnection& connection) const
{
    auto& entry = connection.entry();
    const auto name = origin(request);
    const ServerRequest asked{.method = request.method,
                              .path = request.path,
                              .query = request.params,
                              .headers = entry.headers,
                              .body = request.body,
                              .origin = name.value_or(""),
                              .now = m_clock()};
    // Whoever has set a fault for every path must be able to take it away again.
    if (ControlEndpoints::isControlPath(request.path)) {
        connection.logged = true;
        return ask(asked);
    }
    entry.transaction = m_trace.of(asked);
    m_log.begin(entry);
    auto response = respondWithFaults(asked, connection);
    if (!response)
        return response;
    if (!response->transaction.empty())
        entry.transaction = response->transaction;
    if (!entry.transaction.empty() && !response->text.empty())
        m_trace.note(entry.transaction, response->text, asked.origin);
    return response;
}

std::optional<Response> RequestPipeline::respondWithFaults(const ServerRequest& request,
                                                           ClientConnection& connection) const
{
    const auto fault = m_faults.take(request.method, request.path);
    if (!fault)
        return ask(request);

    connection.entry().fault = std::make_shared<const AdServerFault>(*fault);
    if (fault->neverResponds) {
        m_log.append(connection.entry());
        connection.logged = true;
        connection.pause(std::nullopt);
    }
    if (fault->neverResponds || !connection.pause(fault->delay) || fault->drop) {
        connection.breakOff();
        return std::nullopt;
    }
    auto response = isCanned(*fault) ? cannedResponse(*fault) : ask(request);
    for (const auto& [name, value] : fault->headers)
        (name == "Content-Type" ? response.contentType : response.headers[name]) = value;
    response.chunked = fault->chunked;
    response.cutBodyAfter = fault->cutBodyAfter;
    response.stallBodyAfter = fault->stallBodyAfter;
    response.stallFor = fault->stallFor;
    response.bytesPerSecond = fault->bytesPerSecond;
    return response;
}

Response RequestPipeline::ask(const ServerRequest& request) const
{
    if (request.origin.empty())
        return Response::badRequest("the Host header names no host");
    for (const auto& endpoint : m_endpoints)
        if (auto response = endpoint->respond(request))
            return std::move(*response);
    return Response::notFound();
}

std::optional<std::string> RequestPipeline::origin(const httplib::Request& request) const
{
    constexpr std::string_view allowed = ".-:[]";
    const auto host = request.get_header_value("Host");
    const bool plausible = !host.empty() && std::all_of(host.begin(), host.end(), [&](unsigned char letter) {
        return std::isalnum(letter) != 0 || allowed.find(static_cast<char>(letter)) != allowed.npos;
    });
    if (!plausible)
        return std::nullopt;
    return m_scheme + "://" + host;
}

} // namespace adserver
