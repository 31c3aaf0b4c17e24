#include "ResponseHead.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

namespace virlo
{

namespace
{
char lowered(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}
} // namespace

ResponseHead::Progress ResponseHead::take(std::string_view line)
{
    m_size += line.size();
    if (m_size > maximumSize)
        return Progress::TooLong;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);

    if (!m_arriving) {
        if (line.starts_with("HTTP/"))
            begin(line);
        return Progress::Arriving;
    }
    if (!line.empty()) {
        noteLength(line);
        m_arrivingFields.append(line) += '\n';
        return Progress::Arriving;
    }
    m_arriving = false;
    if (m_arrivingStatus < 200)
        return Progress::Arriving;
    m_status = m_arrivingStatus;
    m_length = m_arrivingLength;
    m_fields.swap(m_arrivingFields);
    return Progress::Whole;
}

void ResponseHead::begin(std::string_view statusLine)
{
    m_arriving = true;
    m_arrivingStatus = 0;
    m_arrivingLength.reset();
    m_arrivingFields.clear();
    const auto space = std::min(statusLine.find(' '), statusLine.size() - 1);
    std::from_chars(statusLine.data() + space + 1, statusLine.data() + statusLine.size(), m_arrivingStatus);
}

void ResponseHead::noteLength(std::string_view line)
{
    static constexpr std::string_view name = "content-length:";
    if (line.size() < name.size() ||
        !std::equal(name.begin(), name.end(), line.begin(), [](char a, char b) { return a == lowered(b); }))
        return;
    const std::string_view text = trimmed(line.substr(name.size()));
    std::uint64_t length = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), length);
    m_arrivingLength = read.ec == std::errc() ? length : std::numeric_limits<std::uint64_t>::max();
}

HTTPURLResponse ResponseHead::response(URL url) const
{
    HTTPURLResponse response{std::move(url), m_status};
    auto last = response.headers.end();
    for (std::string_view left = m_fields; !left.empty();) {
        const std::string_view line = left.substr(0, left.find('\n'));
        left.remove_prefix(line.size() + 1);
        const auto colon = line.find(':');
        if (isBlank(line.front())) { // goes on with the line before, as servers of old have it
            if (last != response.headers.end())
                last->second.append(" ").append(trimmed(line));
        } else if (colon != std::string_view::npos) {
            std::string name(trimmed(line.substr(0, colon)));
            std::transform(name.begin(), name.end(), name.begin(), lowered);
            last = response.headers.emplace(std::move(name), trimmed(line.substr(colon + 1)));
        }
    }
    return response;
}

} // namespace virlo
