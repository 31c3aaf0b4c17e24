#include "StorePage.h"

#include "JSONText.h"
#include "URLText.h"

#include <string_view>

namespace adserver
{

namespace
{

constexpr std::string_view prefix = "/store/";

std::string escaped(const std::string& text)
{
    std::string html;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += letter;
        }
    }
    return html;
}

std::string pageOf(const nlohmann::json& item, const std::string& origin)
{
    const auto title = escaped(textAt(item, "title"));
    const auto price = textAt(item, "price");
    std::string images;
    if (const auto screenshots = item.find("screenshots");
        screenshots != item.end() && screenshots->is_array())
        for (const auto& screenshot : *screenshots)
            if (screenshot.is_string())
                images += "<img alt=\"\" src=\"" +
                          escaped(absoluteURL(screenshot.get<std::string>(), origin, campaignFilesPath)) +
                          "\">";
    return "<!doctype html><html lang=\"en\"><meta charset=\"utf-8\"><title>" + title +
           "</title><style>body{font:20px/1.5 sans-serif;max-width:60rem;margin:3rem auto;padding:0 1rem}"
           "img{width:48%;margin:1%;border-radius:8px}b{background:#06c;color:#fff;padding:.4rem 1.2rem;"
           "border-radius:1rem}</style><h1>" +
           title + "</h1><p>" + escaped(textAt(item, "category")) + "</p><p><b>" +
           escaped(price.empty() ? "Get" : price) + "</b></p><p>" + escaped(textAt(item, "description")) +
           "</p>" + images + "</html>\n";
}

} // namespace

std::optional<Response> StorePage::respond(const ServerRequest& request) const
{
    if (!request.path.starts_with(prefix))
        return std::nullopt;
    if (request.method != "GET" && request.method != "HEAD")
        return Response::error(405, "METHOD_NOT_ALLOWED");
    const auto cid = request.path.substr(prefix.size());
    const auto item = m_campaigns.item(cid);
    if (!item)
        return Response::notFound();
    if (request.header("accept") == "application/json")
        return Response::json({{"cid", cid}, {"title", textAt(*item, "title")}});
    Response response;
    response.contentType = "text/html; charset=utf-8";
    response.text = pageOf(*item, request.origin);
    return response;
}

} // namespace adserver
