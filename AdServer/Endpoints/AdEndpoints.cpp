#include "AdEndpoints.h"

#include "JSONText.h"
#include "URLText.h"

#include <charconv>
#include <string_view>

namespace adserver
{

namespace
{

constexpr std::size_t longestName = 255;

Response invalidSession()
{
    return Response::error(401, "INVALID_SESSION");
}

Response wrongMethod()
{
    return Response::error(405, "METHOD_NOT_ALLOWED");
}

bool isName(const std::string& text)
{
    return !text.empty() && text.size() <= longestName;
}

/// What follows `prefix`; nothing when the path does not begin with it.
std::optional<std::string> after(const std::string& path, std::string_view prefix)
{
    if (!path.starts_with(prefix))
        return std::nullopt;
    return path.substr(prefix.size());
}

std::optional<nlohmann::json> objectIn(const std::string& body)
{
    auto value = parseJSONIfPossible(body);
    return value && value->is_object() ? std::move(value) : std::nullopt;
}

/// The key whose value is of the wrong type; empty when the report is right.
std::string wrongKey(const nlohmann::json& report)
{
    for (const auto& [key, value] : report.items()) {
        const bool right = key == "connectionSpeed"                                 ? value.is_number()
                           : key == "user"                                          ? value.is_object()
                           : key == "thirdPartyUserId" || key == "currentPlacement" ? value.is_string()
                                                                                    : true;
        if (!right)
            return key;
    }
    return {};
}

/// What a contact form sends.
bool isContact(const nlohmann::json& body)
{
    const auto isText = [&](const char* key) { return body.contains(key) && body[key].is_string(); };
    return body.size() == 1 && (isText("email") || isText("phone"));
}

/// Copies the members that an item has.
void copyMembers(const nlohmann::json& item, std::initializer_list<const char*> keys, nlohmann::json& into)
{
    for (const auto* key : keys)
        if (const auto found = item.find(key); found != item.end())
            into[key] = *found;
}

} // namespace

AdEndpoints::AdEndpoints(SessionTable& sessions, TransactionTable& transactions, CampaignCatalogue& campaigns)
    : m_sessions(sessions)
    , m_transactions(transactions)
    , m_campaigns(campaigns)
{
}

std::optional<Response> AdEndpoints::respond(const ServerRequest& request) const
{
    if (request.path.starts_with("/app/inst/"))
        return install(request);
    if (request.path == "/app/sess" || request.path.starts_with("/app/sess/"))
        return session(request);
    if (request.path == "/ad/req")
        return advertisement(request);
    return ofTransaction(request);
}

Response AdEndpoints::install(const ServerRequest& request) const
{
    if (request.method != "POST")
        return wrongMethod();
    if (!isName(*after(request.path, "/app/inst/")))
        return Response::badRequest("the app identifier is missing or too long");
    if (!objectIn(request.body))
        return Response::badRequest("the body must be a JSON object");
    return Response::json({{"status", "OK"}});
}

Response AdEndpoints::session(const ServerRequest& request) const
{
    if (request.method == "POST")
        return startSession(request);
    if (request.path != "/app/sess/" && request.path != "/app/sess")
        return Response::notFound();
    if (request.method == "PUT")
        return keepUpSession(request);
    if (request.method == "DELETE")
        return m_sessions.close(request.session(), request.now) ? Response::nothing() : invalidSession();
    return wrongMethod();
}

Response AdEndpoints::startSession(const ServerRequest& request) const
{
    const auto app = after(request.path, "/app/sess/");
    if (!app || !isName(*app))
        return Response::badRequest("the app identifier is missing or too long");
    if (request.queryItem("state") != "start")
        return Response::badRequest("\"state\" must be \"start\"");
    if (!objectIn(request.body))
        return Response::badRequest("the body must be a JSON object");
    return Response::json(m_sessions.open(*app, request.now));
}

Response AdEndpoints::keepUpSession(const ServerRequest& request) const
{
    const auto report = objectIn(request.body);
    if (!report)
        return Response::badRequest("the body must be a JSON object");
    if (const auto key = wrongKey(*report); !key.empty())
        return Response::badRequest("\"" + key + "\" is of the wrong type");
    const auto session = m_sessions.keepUp(request.session(), *report, request.now);
    return session ? Response::json(*session) : invalidSession();
}

Response AdEndpoints::advertisement(const ServerRequest& request) const
{
    if (request.method != "GET")
        return wrongMethod();
    if (!m_sessions.isOpen(request.session(), request.now))
        return invalidSession();
    const auto placement = request.queryItem("placement");
    if (!isName(request.queryItem("app")))
        return Response::badRequest("\"app\" is missing or too long");
    if (!isName(placement))
        return Response::badRequest("\"placement\" is missing or too long");
    const auto campaign = m_campaigns.choose(placement, request.queryItem("type"));
    if (!campaign)
        return Response::error(404, "NO_AD");
    const auto txid = m_transactions.begin(campaign);
    auto response = Response::json(campaign->response(txid, request.origin, request.now));
    response.transaction = txid;
    return response;
}

std::optional<Response> AdEndpoints::ofTransaction(const ServerRequest& request) const
{
    const auto rest = after(request.path, "/ad/");
    if (!rest)
        return std::nullopt;
    const auto txidAt = rest->find('/');
    const auto cidAt = txidAt == rest->npos ? rest->npos : rest->find('/', txidAt + 1);
    if (cidAt == rest->npos)
        return std::nullopt;
    const auto what = rest->substr(0, txidAt);
    ItemPath path{.txid = rest->substr(txidAt + 1, cidAt - txidAt - 1), .rest = rest->substr(cidAt + 1)};
    path.campaign = m_transactions.campaign(path.txid);
    if (!path.campaign)
        return Response::notFound();
    if (what == "more")
        return moreItems(request, path);
    path.item = path.campaign->item(path.rest);
    if (!path.item)
        return Response::notFound();
    if (what == "imp" || what == "click" || what == "form")
        return report(request, path, what);
    if (what == "store")
        return storeLink(request, path);
    if (what == "poll")
        return poll(request, path);
    return std::nullopt;
}

Response AdEndpoints::moreItems(const ServerRequest& request, const ItemPath& path)
{
    if (request.method != "GET")
        return wrongMethod();
    std::size_t number = 0;
    const auto* const end = path.rest.data() + path.rest.size();
    const auto [stopped, failure] = std::from_chars(path.rest.data(), end, number);
    if (failure != std::errc() || stopped != end)
        return Response::notFound();
    const auto page = path.campaign->page(number, path.txid, request.origin);
    return page ? Response::json(*page) : Response::notFound();
}

Response AdEndpoints::report(const ServerRequest& request, const ItemPath& path,
                             const std::string& what) const
{
    if (request.method != "POST")
        return wrongMethod();
    const auto body = objectIn(request.body);
    if (!body)
        return Response::badRequest("the body must be a JSON object");
    if (what == "form" && !isContact(*body))
        return Response::badRequest("the body must have the one key \"email\" or \"phone\", a text");
    if (what == "click")
        m_transactions.noteClick(path.txid, path.rest, request.now);
    return what == "form" ? Response::json({{"status", "OK"}}) : Response::nothing();
}

Response AdEndpoints::storeLink(const ServerRequest& request, const ItemPath& path) const
{
    if (request.method != "GET")
        return wrongMethod();
    m_transactions.noteClick(path.txid, path.rest, request.now);
    Response response{.status = 302};
    response.headers["Location"] = request.origin + "/store/" + percentEncoded(path.rest);
    return response;
}

Response AdEndpoints::poll(const ServerRequest& request, const ItemPath& path) const
{
    if (request.method != "GET")
        return wrongMethod();
    if (!m_sessions.isOpen(request.session(), request.now))
        return invalidSession();
    nlohmann::json value{{"status", m_transactions.takeReward(path.txid, path.rest, request.now)}};
    if (value["status"] == true)
        copyMembers(*path.item, {"cid", "title", "currencyAmount", "currencyType"}, value);
    return Response::json(value);
}

} // namespace adserver
