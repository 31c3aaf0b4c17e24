#pragma once

#include "Export.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace virlo
{

/// A URL that keeps the full text it was made from: equality, order and hash go by that text, and server
/// macros in brackets are kept. Absolute or relative. A value, usable from any thread.
class VIRLO_EXPORT URL
{
public:
    /// `text` without surrounding white space; nothing where that is empty or holds white space or control
    /// characters.
    [[nodiscard]] static std::optional<URL> fromString(std::string_view text);

    [[nodiscard]] const std::string& absoluteString() const noexcept { return m_text; }

    /// Lower case, without the colon; empty for a relative URL.
    [[nodiscard]] std::string scheme() const;
    /// Without port, user or brackets; empty where there is none.
    [[nodiscard]] std::string host() const;
    /// As it stands, still percent-encoded.
    [[nodiscard]] std::string path() const;

    /// Scheme and authority as they are in the text; empty where there is no authority.
    [[nodiscard]] std::string_view origin() const;
    /// The text that goes over the network: what HTTP cannot carry is percent-encoded.
    [[nodiscard]] std::string encodedString() const;

    /// `component` joined to the path with one slash between; characters that a path may not hold are
    /// percent-encoded, slashes inside the component stay.
    [[nodiscard]] URL appendingPathComponent(std::string_view component) const;
    /// `items` added to the query in order, names and values percent-encoded.
    [[nodiscard]] URL
    appendingQueryItems(const std::vector<std::pair<std::string, std::string>>& items) const;

    friend bool operator==(const URL&, const URL&) = default;
    friend auto operator<=>(const URL&, const URL&) = default; // NOLINT(modernize-use-nullptr): names none

private:
    explicit URL(std::string text);

    std::string m_text;
};

[[nodiscard]] VIRLO_EXPORT std::string describe(const URL& url);

} // namespace virlo

template <>
struct std::hash<virlo::URL> {
    std::size_t operator()(const virlo::URL& url) const noexcept
    {
        return std::hash<std::string>{}(url.absoluteString());
    }
};
