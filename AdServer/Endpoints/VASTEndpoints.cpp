#include "VASTEndpoints.h"

#include "VASTWriter.h"

#include <charconv>
#include <string_view>

namespace adserver
{

namespace
{

constexpr std::size_t longestTransaction = 255;

/// 1 when there is no number behind the name, 0 when what stands there is none.
std::uint64_t stepIn(const std::string& path, const std::string& name)
{
    const auto begin = std::string_view(vastPath).size() + name.size();
    if (begin == path.size())
        return 1;
    std::uint64_t step = 0;
    const auto* const end = path.data() + path.size();
    const auto [stopped, failure] = std::from_chars(path.data() + begin + 1, end, step);
    return failure == std::errc() && stopped == end ? step : 0;
}

} // namespace

std::optional<Response> VASTEndpoints::respond(const ServerRequest& request) const
{
    const bool isPing = request.path.starts_with(pingPath);
    if (!isPing && !request.path.starts_with(vastPath))
        return std::nullopt;
    if (request.method != "GET" && (isPing || request.method != "HEAD"))
        return Response::error(405, "METHOD_NOT_ALLOWED");
    return isPing ? ping(request) : document(request);
}

Response VASTEndpoints::document(const ServerRequest& request) const
{
    const auto name = *documentNamedBy(request.path);
    const auto found = m_campaigns.document(name);
    const auto step = stepIn(request.path, name);
    if (!found || step == 0 || step > found->steps)
        return Response::notFound();
    const auto tx = request.queryItem("tx");
    if (tx.size() > longestTransaction)
        return Response::badRequest("\"tx\" is too long");
    Response response;
    response.contentType = "application/xml";
    response.headers["Cache-Control"] = "no-store";
    response.text = writeVAST(*found, {.name = name, .step = step, .origin = request.origin, .tx = tx});
    return response;
}

Response VASTEndpoints::ping(const ServerRequest& request) const
{
    const auto begin = std::string_view(pingPath).size();
    const auto end = request.path.find('/', begin);
    // A ping for nobody is a client's mistake, and should look like one in the log.
    if (end == request.path.npos || !m_campaigns.document(request.path.substr(begin, end - begin)))
        return Response::notFound();
    Response response;
    response.headers["Cache-Control"] = "no-store";
    return response;
}

} // namespace adserver
