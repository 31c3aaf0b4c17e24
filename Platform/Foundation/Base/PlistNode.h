#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <string_view>
#include <type_traits>

namespace virlo::PlistNode
{

struct Freer {
    void operator()(plist_t node) const { plist_free(node); }
};

/// A whole property list; its parts are bare `plist_t` that live as long as it does.
using Owned = std::unique_ptr<std::remove_pointer_t<plist_t>, Freer>;

/// Reads either form; null where `data` is none, is longer than 16 MiB or holds more than its readers can
/// bear.
[[nodiscard]] Owned fromData(std::string_view data);
[[nodiscard]] std::string xml(const Owned& root);
[[nodiscard]] std::string binary(const Owned& root);

[[nodiscard]] plist_t newString(const std::string& text);

// Readings of a node, which may be null; nothing where it is of another kind.
[[nodiscard]] std::optional<std::string> string(plist_t node);
[[nodiscard]] std::optional<std::uint64_t> uid(plist_t node);
[[nodiscard]] std::optional<double> real(plist_t node);
[[nodiscard]] plist_t item(plist_t dictionary, const char* key);

} // namespace virlo::PlistNode
