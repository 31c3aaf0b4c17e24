#include "URL.h"

#include "ASCII.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace virlo
{

namespace
{
enum CharacterClass : std::uint8_t {
    Unreserved = 1,
    PathAlso = 2,
    SchemeAlso = 4,
    Blank = 8,
    Control = 16,
    HTTPAlso = 32
};

constexpr std::array<std::uint8_t, 256> characterClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    const auto mark = [&classes](std::string_view characters, int bits) {
        for (const char character : characters)
            classes[static_cast<unsigned char>(character)] |= static_cast<std::uint8_t>(bits);
    };
    mark("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~", Unreserved | PathAlso);
    mark("!$&'()*+,;=:@/", PathAlso);
    mark("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-.", SchemeAlso);
    for (unsigned code = 0x21; code < 0x7F; ++code) {
        if (std::string_view("\"<>\\^`{|}").find(static_cast<char>(code)) == std::string_view::npos)
            classes[code] |= HTTPAlso;
    }
    for (unsigned code = 0; code < 0x20; ++code)
        classes[code] |= Control;
    classes[0x7F] |= Control;
    mark(" \t\n\v\f\r", Blank);
    return classes;
}();

bool is(char character, int bits)
{
    return (characterClasses[static_cast<unsigned char>(character)] & bits) != 0;
}

void appendEncoded(std::string& text, std::string_view part, int kept)
{
    ASCII::appendPercentEncoded(text, part, [kept](char character) { return is(character, kept); });
}

std::size_t schemeLength(std::string_view text)
{
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] == ':')
            return position;
        const bool letter = is(text[position], SchemeAlso) && (text[position] | 0x20) >= 'a';
        if (!letter && (position == 0 || !is(text[position], SchemeAlso)))
            break;
    }
    return 0;
}

/// Where the parts of a URL's text begin and end.
struct Layout {
    bool hasAuthority = false;
    std::size_t authorityStart = 0; ///< equal to pathStart where there is no authority
    std::size_t pathStart = 0;
    std::size_t pathEnd = 0;
    std::size_t queryEnd = 0;

    explicit Layout(std::string_view text)
    {
        const std::size_t scheme = schemeLength(text);
        pathStart = scheme == 0 ? 0 : scheme + 1;
        authorityStart = pathStart;
        if (text.substr(pathStart, 2) == "//") {
            hasAuthority = true;
            authorityStart = pathStart + 2;
            pathStart = std::min(text.find_first_of("/?#", authorityStart), text.size());
        }
        pathEnd = std::min(text.find_first_of("?#", pathStart), text.size());
        queryEnd = std::min(text.find('#', pathEnd), text.size());
    }
};
} // namespace

URL::URL(std::string text) : m_text(std::move(text)) {}

std::optional<URL> URL::fromString(std::string_view text)
{
    while (!text.empty() && is(text.front(), Blank))
        text.remove_prefix(1);
    while (!text.empty() && is(text.back(), Blank))
        text.remove_suffix(1);
    const auto isForbidden = [](char character) { return is(character, Blank | Control); };
    if (text.empty() || std::any_of(text.begin(), text.end(), isForbidden))
        return std::nullopt;
    return URL(std::string(text));
}

std::string URL::scheme() const
{
    std::string scheme = m_text.substr(0, schemeLength(m_text));
    for (char& character : scheme) {
        if (character >= 'A' && character <= 'Z')
            character |= 0x20;
    }
    return scheme;
}

std::string URL::host() const
{
    const Layout layout(m_text);
    std::string_view authority =
        std::string_view(m_text).substr(layout.authorityStart, layout.pathStart - layout.authorityStart);
    if (const auto user = authority.rfind('@'); user != std::string_view::npos)
        authority.remove_prefix(user + 1);
    if (!authority.empty() && authority.front() == '[') {
        const auto end = authority.find(']');
        return end == std::string_view::npos ? std::string() : std::string(authority.substr(1, end - 1));
    }
    return std::string(authority.substr(0, authority.find(':')));
}

std::string URL::path() const
{
    const Layout layout(m_text);
    return m_text.substr(layout.pathStart, layout.pathEnd - layout.pathStart);
}

std::string_view URL::origin() const
{
    const Layout layout(m_text);
    return std::string_view(m_text).substr(0, layout.hasAuthority ? layout.pathStart : 0);
}

std::string URL::encodedString() const
{
    const std::string_view start = origin();
    std::string text(start);
    appendEncoded(text, std::string_view(m_text).substr(start.size()), HTTPAlso);
    return text;
}

URL URL::appendingPathComponent(std::string_view component) const
{
    const Layout layout(m_text);
    std::size_t pathEnd = layout.pathEnd;
    while (pathEnd > layout.pathStart && m_text[pathEnd - 1] == '/')
        --pathEnd;
    component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));

    std::string text;
    text.reserve(m_text.size() + component.size() + 16);
    text.append(m_text, 0, pathEnd);
    text += '/';
    appendEncoded(text, component, PathAlso);
    text.append(m_text, layout.pathEnd);
    return URL(std::move(text));
}

URL URL::appendingQueryItems(const std::vector<std::pair<std::string, std::string>>& items) const
{
    const Layout layout(m_text);
    std::string text = m_text.substr(0, layout.queryEnd);
    for (const auto& [name, value] : items) {
        if (text.size() == layout.pathEnd)
            text += '?';
        else if (text.back() != '?' && text.back() != '&')
            text += '&';
        appendEncoded(text, name, Unreserved);
        text += '=';
        appendEncoded(text, value, Unreserved);
    }
    text.append(m_text, layout.queryEnd);
    return URL(std::move(text));
}

std::string describe(const URL& url)
{
    return url.absoluteString();
}

} // namespace virlo
