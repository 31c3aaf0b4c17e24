#include "VASTEndpoints.h"

#include "URLText.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <iterator>
#include <string_view>

namespace adserver
{

namespace
{

constexpr std::string_view vastPath = "/vast/";
constexpr std::string_view pingPath = "/ping/";
constexpr std::size_t longestTransaction = 255;

/// Keeps requests within the folder: no dots, no slashes.
bool isDocumentName(const std::string& name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char letter) {
        return letter < 128 && (std::isalnum(letter) != 0 || letter == '-' || letter == '_');
    });
}

unsigned stepOf(const std::string& text)
{
    unsigned step = 0;
    const auto [stopped, failure] = std::from_chars(text.data(), text.data() + text.size(), step);
    return failure == std::errc() && stopped == text.data() + text.size() ? step : 0;
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
    const auto path = request.path.substr(vastPath.size());
    const auto slash = path.find('/');
    const auto name = path.substr(0, slash);
    const auto step = slash == path.npos ? 1U : stepOf(path.substr(slash + 1));
    if (!isDocumentName(name) || step == 0)
        return Response::notFound();
    const auto tx = request.queryItem("tx");
    if (tx.size() > longestTransaction)
        return Response::badRequest("\"tx\" is too long");
    auto text = slash == path.npos ? std::nullopt : templateNamed(name + '/' + std::to_string(step));
    if (!text)
        text = templateNamed(name);
    if (!text)
        return Response::notFound();
    fillIn(*text, "{origin}", request.origin);
    fillIn(*text, "{tx}", percentEncoded(tx));
    fillIn(*text, "{step}", std::to_string(step));
    fillIn(*text, "{next}", std::to_string(step - 1));
    Response response;
    response.contentType = "application/xml";
    response.headers["Cache-Control"] = "no-store";
    response.text = std::move(*text);
    return response;
}

Response VASTEndpoints::ping(const ServerRequest& request) const
{
    const auto path = request.path.substr(pingPath.size());
    const auto name = path.substr(0, path.find('/'));
    // A tracking URL of no document is a client's mistake, and shows as one in the log.
    if (name.size() == path.size() || !isDocumentName(name) || !templateNamed(name))
        return Response::notFound();
    Response response;
    response.headers["Cache-Control"] = "no-store";
    return response;
}

std::optional<std::string> VASTEndpoints::templateNamed(const std::string& name) const
{
    for (const auto& folder : m_campaigns.folders()) {
        std::ifstream file(folder / "vast" / (name + ".xml"), std::ios::binary);
        if (file)
            return std::string(std::istreambuf_iterator<char>(file), {});
    }
    return std::nullopt;
}

} // namespace adserver
