#include "RequestOptions.h"

#include <algorithm>
#include <string_view>

namespace virlo
{

namespace
{
using Headers = std::map<std::string, std::string>;

bool isToken(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                                   "0123456789!#$%&'*+-.^_`|~") == std::string_view::npos;
}

bool contains(const Headers& headers, const char* name)
{
    return std::any_of(headers.begin(), headers.end(),
                       [name](const auto& header) { return curl_strequal(header.first.c_str(), name) != 0; });
}

bool isLoopback(std::string_view host)
{
    return host.starts_with("127.") || host == "::1" || host == "localhost";
}

void append(HeaderLines& lines, const std::string& line)
{
    lines.reset(curl_slist_append(lines.release(), line.c_str()));
}

/// Leaves out what `overriding` has as well. False where a name is no header name.
bool append(HeaderLines& lines, const Headers& headers, const Headers& overriding)
{
    for (const auto& [name, value] : headers) {
        if (!isToken(name))
            return false;
        if (contains(overriding, name.c_str()))
            continue;
        // An empty value takes a semicolon; with the colon libcurl would leave the header out.
        std::string line = name;
        line += value.empty() ? ";" : ": ";
        line += value;
        // A line end inside a value would begin another header.
        std::replace_if(
            line.begin(), line.end(),
            [](char character) { return static_cast<unsigned char>(character) < 0x20; }, ' ');
        append(lines, line);
    }
    return true;
}

void setMethodAndBody(CURL* easy, const URLRequest& request)
{
    if (request.method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        return;
    }
    const bool hasBody = request.body || request.method == "POST";
    if (hasBody) {
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.body ? request.body->size() : 0));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body ? request.body->c_str() : "");
    }
    // 301 and 302 turn a POST into a GET, as in browsers, and no other method; to libcurl any body is a POST.
    if (request.method != "POST")
        curl_easy_setopt(easy, CURLOPT_POSTREDIR, CURL_REDIR_POST_301 | CURL_REDIR_POST_302);
    if (request.method != (hasBody ? "POST" : "GET"))
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
}
} // namespace

std::optional<std::string> setRequestOptions(CURL* easy, const URLRequest& request, const Headers& additional,
                                             HeaderLines& lines)
{
    if (!isToken(request.method))
        return "The method is no HTTP method.";
    if (!append(lines, additional, request.headers) || !append(lines, request.headers, {}))
        return "A header's name is not valid.";
    // libcurl would call any body a form.
    if (!contains(additional, "Content-Type") && !contains(request.headers, "Content-Type"))
        append(lines, "Content-Type:");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, lines.get());

    curl_easy_setopt(easy, CURLOPT_URL, request.url.encodedString().c_str());
    // Proxies come from the environment, but are never used between an app and its own machine.
    if (isLoopback(request.url.host()))
        curl_easy_setopt(easy, CURLOPT_PROXY, "");
    setMethodAndBody(easy, request);
    return std::nullopt;
}

} // namespace virlo
