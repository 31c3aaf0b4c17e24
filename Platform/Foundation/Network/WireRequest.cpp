#include "WireRequest.h"

#include <algorithm>
#include <cstddef>

namespace virlo
{

namespace
{
/// The text that goes over the wire: what HTTP cannot carry is percent-encoded, server macros keep their
/// brackets.
std::string wireText(const std::string& url, std::size_t serverLength)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    static constexpr std::string_view unsafe = "\"<>\\^`{|}";
    const auto isUnsafe = [](char character) {
        return static_cast<unsigned char>(character) >= 0x80 || unsafe.find(character) != unsafe.npos;
    };
    auto from = std::find_if(url.begin() + static_cast<std::ptrdiff_t>(serverLength), url.end(), isUnsafe);
    std::string text(url.begin(), from);
    for (; from != url.end(); ++from) {
        const auto code = static_cast<unsigned char>(*from);
        if (isUnsafe(*from))
            text += {'%', digits[code >> 4], digits[code & 0xF]};
        else
            text += *from;
    }
    return text;
}

char lowered(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

bool isToken(std::string_view text)
{
    static constexpr std::string_view others = "0123456789!#$%&'*+-.^_`|~";
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        const char small = lowered(character);
        return (small >= 'a' && small <= 'z') || others.find(character) != std::string_view::npos;
    });
}

bool has(const WireRequest::Headers& headers, std::string_view name)
{
    return std::any_of(headers.begin(), headers.end(), [name](const auto& header) {
        return std::equal(name.begin(), name.end(), header.first.begin(), header.first.end(),
                          [](char one, char other) { return lowered(one) == lowered(other); });
    });
}

bool isLoopback(std::string_view server)
{
    const auto host = server.substr(std::min(server.find("://"), server.size() - 3) + 3);
    return host.starts_with("127.") || host.starts_with("[::1]") || host == "localhost" ||
           host.starts_with("localhost:");
}

void setMethodAndBody(CURL* easy, const std::string& method, const std::optional<std::string>& body)
{
    // Puts back whatever the handle's last request set. In this order: any word on the fields makes it a
    // POST.
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, nullptr);
    curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, nullptr);
    if (method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        return;
    }
    const bool carriesBody = body.has_value() || method == "POST";
    if (carriesBody) {
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body ? body->size() : 0));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body ? body->c_str() : "");
    }
    // 301 and 302 turn a POST into a GET, as browsers do, and nothing else; for libcurl any body is a POST.
    curl_easy_setopt(easy, CURLOPT_POSTREDIR,
                     method == "POST" ? 0L : CURL_REDIR_POST_301 | CURL_REDIR_POST_302);
    if (method != (carriesBody ? "POST" : "GET"))
        curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, method.c_str());
}
} // namespace

std::string_view WireRequest::serverOf(const URL& url)
{
    const std::string_view text = url.absoluteString();
    const auto authority = text.find("://");
    return text.substr(0, text.find_first_of("/?#", authority == std::string_view::npos ? 0 : authority + 3));
}

std::optional<std::string> WireRequest::apply(CURL* easy, const URLRequest& request,
                                              const Headers& additional)
{
    if (!isToken(request.method))
        return "The method is no HTTP method.";
    const bool isForm = request.body || request.method == "POST";
    const bool same = m_lines && m_head.isForm == isForm && m_head.own == request.headers &&
                      m_head.additional == additional;
    if (!same) {
        m_head = {additional, request.headers, isForm};
        if (!makeLines())
            return "A header's name is none.";
    }
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, m_lines.get());

    const std::string_view server = serverOf(request.url);
    curl_easy_setopt(easy, CURLOPT_URL, wireText(request.url.absoluteString(), server.size()).c_str());
    // Proxies come from the environment, but never stand between an app and its own machine.
    curl_easy_setopt(easy, CURLOPT_PROXY, isLoopback(server) ? "" : nullptr);
    setMethodAndBody(easy, request.method, request.body);
    return std::nullopt;
}

bool WireRequest::makeLines()
{
    m_lines.reset();
    const auto& [additional, own, isForm] = m_head;
    if (!append(additional, own) || !append(own, {})) {
        m_lines.reset();
        return false;
    }
    append("Expect:"); // no waiting for "100 Continue"
    if (isForm && !has(additional, "Content-Type") && !has(own, "Content-Type"))
        append("Content-Type:"); // libcurl would call any body a form
    return true;
}

// A header that `stronger` has as well is left out.
bool WireRequest::append(const Headers& headers, const Headers& stronger)
{
    for (const auto& [name, value] : headers) {
        if (!isToken(name))
            return false;
        if (has(stronger, name))
            continue;
        // An empty value takes a semicolon; with the colon libcurl would leave the header out.
        std::string line = name;
        line.append(value.empty() ? ";" : ": ").append(value);
        // A line end inside a value would begin a header of its own.
        std::replace_if(
            line.begin(), line.end(),
            [](char character) { return static_cast<unsigned char>(character) < 0x20; }, ' ');
        append(line);
    }
    return true;
}

void WireRequest::append(const std::string& line)
{
    m_lines.reset(curl_slist_append(m_lines.release(), line.c_str()));
}

} // namespace virlo
