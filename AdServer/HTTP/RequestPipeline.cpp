#include "RequestPipeline.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace adserver
{

namespace
{

bool isMadeUp(const AdServerFault& fault)
{
    return fault.status || fault.body || fault.wrongJSON || fault.bodySize;
}

Answer madeUpAnswer(const AdServerFault& fault)
{
    Answer answer;
    answer.status = fault.status.value_or(200);
    answer.contentType = fault.contentType.value_or("application/json");
    answer.text = fault.wrongJSON ? R"({"txid":"broken","ads":[{"cid":)" : fault.body.value_or("");
    if (fault.bodySize)
        answer.body = std::make_shared<const FillerBody>(*fault.bodySize);
    return answer;
}

} // namespace

RequestPipeline::RequestPipeline(const Stations& stations, std::string scheme,
                                 std::function<TimePoint()> clock)
    : m_stations(stations)
    , m_scheme(std::move(scheme))
    , m_clock(std::move(clock))
{
}

std::optional<Answer> RequestPipeline::answer(const httplib::Request& request,
                                              ClientConnection& connection) const
{
    // Whoever has set a fault for every path must be able to take it away again.
    if (ControlEndpoints::isControlPath(request.path)) {
        connection.noted = true;
        return ask(request, connection);
    }
    const auto fault = m_stations.faults.take(request.method, request.path);
    if (!fault)
        return ask(request, connection);

    if (fault->neverAnswers) {
        m_stations.log.note(connection.exchange());
        connection.noted = true;
        connection.pause(std::nullopt);
    }
    if (fault->neverAnswers || !connection.pause(fault->delay) || fault->drop) {
        connection.breakOff();
        return std::nullopt;
    }
    auto answer = isMadeUp(*fault) ? madeUpAnswer(*fault) : ask(request, connection);
    for (const auto& [name, value] : fault->headers)
        (name == "Content-Type" ? answer.contentType : answer.headers[name]) = value;
    answer.chunked = fault->chunked;
    answer.cutBodyAfter = fault->cutBodyAfter;
    answer.stallBodyAfter = fault->stallBodyAfter;
    answer.stallFor = fault->stallFor;
    answer.bytesPerSecond = fault->bytesPerSecond;
    return answer;
}

Answer RequestPipeline::ask(const httplib::Request& request, const ClientConnection& connection) const
{
    const auto name = origin(request);
    if (!name)
        return Answer::badRequest("the Host header names no host");
    const ServerRequest asked{.method = request.method,
                              .path = request.path,
                              .query = request.params,
                              .headers = connection.exchange().headers,
                              .body = request.body,
                              .origin = *name,
                              .now = m_clock()};
    if (auto answer = m_stations.control.answer(asked))
        return std::move(*answer);
    if (auto answer = m_stations.ads.answer(asked))
        return std::move(*answer);
    if (auto answer = m_stations.vast.answer(asked))
        return std::move(*answer);
    if (auto answer = m_stations.files.answer(asked))
        return std::move(*answer);
    if (auto answer = m_stations.store.answer(asked))
        return std::move(*answer);
    return Answer::notFound();
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
