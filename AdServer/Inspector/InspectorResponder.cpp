#include "InspectorResponder.h"

#include "InspectorPage.h"
#include "JSONText.h"
#include "URLText.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace adserver
{

namespace
{

Response page()
{
    Response response;
    response.contentType = "text/html; charset=utf-8";
    response.text = inspectorPage;
    // The page shows what a server sent: none of it may load or run anything.
    response.headers = {
        {"Content-Security-Policy",
         "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; img-src "
         "http://127.0.0.1:* "
         "data:; connect-src 'self' http://127.0.0.1:*; frame-ancestors 'none'; base-uri 'none'; form-action "
         "'none'"},
        {"X-Content-Type-Options", "nosniff"},
        {"Referrer-Policy", "no-referrer"}};
    return response;
}

Response jsonText(std::string text)
{
    Response response;
    response.contentType = "application/json";
    response.text = std::move(text);
    return response;
}

} // namespace

InspectorResponder::InspectorResponder(const ControlEndpoints& control, RequestLog& log, std::string liveView)
    : m_control(control)
    , m_log(log)
    , m_liveView(std::move(liveView))
{
}

void InspectorResponder::setAddresses(std::string own, std::string adServer)
{
    const std::lock_guard lock(m_mutex);
    m_ownAddress = std::move(own);
    m_adServer = std::move(adServer);
}

Response InspectorResponder::respond(const ServerRequest& request) const
{
    const auto own = [this] {
        const std::lock_guard lock(m_mutex);
        return m_ownAddress;
    }();
    const auto origin = request.header("origin");
    const bool reads = request.method == "GET" || request.method == "HEAD";
    // Simple posts reach a server without a preflight, from any page: the origin decides, not the browser.
    const bool isOwnPage = origin == own || (origin.empty() && reads);
    if (request.origin != own || !isOwnPage)
        return Response::error(403, "FORBIDDEN");
    auto response = ControlEndpoints::isControlPath(request.path) ? m_control.perform(request)
                    : reads                                       ? read(request)
                                                                  : Response::notFound();
    response.headers.emplace("Cache-Control", "no-store");
    return response;
}

Response InspectorResponder::read(const ServerRequest& request) const
{
    constexpr std::string_view oneRecord = "/records/";
    if (request.path == "/")
        return page();
    if (request.path == "/events") {
        Response response;
        response.contentType = "text/event-stream";
        response.body = m_log.feed().listen();
        response.chunked = true;
        return response;
    }
    if (request.path == "/configuration") {
        const std::lock_guard lock(m_mutex);
        return Response::json(
            {{"origin", m_adServer},
             {"liveView", m_liveView.empty() ? nlohmann::json() : nlohmann::json(m_liveView)}});
    }
    if (request.path == "/records")
        return jsonText(m_log.summaries());
    if (request.path == "/records/all") {
        auto list = nlohmann::ordered_json::array();
        for (const auto& entry : m_log.requests())
            list.push_back(entry.toJSON());
        return jsonText(printJSON(list));
    }
    if (request.path.starts_with(oneRecord))
        return record(request.path.substr(oneRecord.size()));
    return Response::notFound();
}

Response InspectorResponder::record(const std::string& rest) const
{
    std::uint64_t identifier = 0;
    const auto [end, failure] = std::from_chars(rest.data(), rest.data() + rest.size(), identifier);
    const std::string_view what(end, static_cast<std::size_t>(rest.data() + rest.size() - end));
    const auto entry = m_log.find(identifier);
    if (failure != std::errc() || !entry)
        return Response::notFound();
    if (what.empty())
        return jsonText(printJSON(entry->toJSON()));
    return what == "/vast" && !entry->responseBody.empty() ? explain(*entry) : Response::notFound();
}

Response InspectorResponder::explain(const RequestLogEntry& entry) const
{
    constexpr std::size_t mostDocuments = 40;
    std::string scheme;
    {
        const std::lock_guard lock(m_mutex);
        scheme = m_adServer.substr(0, m_adServer.find(':'));
    }
    const auto address = [&](const RequestLogEntry& request) {
        const auto host = request.headers.find("host");
        std::string url = scheme + "://" + (host == request.headers.end() ? "" : host->second);
        for (std::size_t begin = 1, end = 0; end != std::string::npos; begin = end + 1) {
            end = request.path.find('/', begin);
            url += '/' + percentEncoded(request.path.substr(begin, end - begin));
        }
        return request.query.empty() ? url : url + '?' + request.query;
    };
    std::vector<VASTExplainer::Document> documents{{address(entry), entry.responseBody}};
    const auto requests = m_log.requests();
    for (auto other = requests.rbegin(); other != requests.rend() && documents.size() < mostDocuments;
         ++other)
        if (!entry.transaction.empty() && other->transaction == entry.transaction && other->id != entry.id &&
            other->path.starts_with("/vast/") && !other->responseBody.empty() && other->status == 200)
            documents.emplace_back(address(*other), other->responseBody);
    return m_explainer.explain(documents);
}

} // namespace adserver
