#pragma once

#include <cstring>
#include <optional>
#include <string_view>

namespace virlo
{

/// The attributes of one element, in document order: names and values in turn, closed by a null. Looks at
/// memory of somebody else's, so it is for the call that it came with.
class XMLAttributes
{
public:
    XMLAttributes() = default;

    explicit XMLAttributes(const char* const* pairs) : m_pairs(pairs) {}

    /// By its exact name, a prefix included.
    [[nodiscard]] std::optional<std::string_view> value(const char* name) const
    {
        for (const char* const* pair = m_pairs; *pair != nullptr; pair += 2) {
            // Most names differ in their first letter.
            if (*pair[0] == *name && std::strcmp(pair[0], name) == 0)
                return pair[1];
        }
        return std::nullopt;
    }

    [[nodiscard]] const char* const* pairs() const noexcept { return m_pairs; }

private:
    static constexpr const char* nothing[] = {nullptr};

    const char* const* m_pairs = nothing;
};

} // namespace virlo
