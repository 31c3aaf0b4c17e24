#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace virlo
{

/// The attributes of an element: names, a prefix included, and values, in document order. No name comes
/// twice.
using XMLAttributes = std::vector<std::pair<std::string, std::string>>;

/// The value of one attribute, if the element has it.
[[nodiscard]] inline std::optional<std::string> valueOf(const XMLAttributes& attributes,
                                                        std::string_view name)
{
    for (const auto& [known, value] : attributes) {
        if (known == name)
            return value;
    }
    return std::nullopt;
}

} // namespace virlo
