#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

/// What the VAST records share.
namespace VIRLOVASTRecord
{

/// A record and its count of references in one piece of memory, though its constructor is protected.
template <typename Record, typename... Arguments>
[[nodiscard]] std::shared_ptr<Record> make(Arguments&&... arguments)
{
    struct Made final : Record {
        explicit Made(Arguments&&... given) : Record(std::forward<Arguments>(given)...) {}
    };

    return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

/// An absent value is like no other, not even another absent one.
template <typename Value>
[[nodiscard]] bool isSame(const std::optional<Value>& one, const std::optional<Value>& other)
{
    return one && one == other;
}

template <typename Value>
[[nodiscard]] std::size_t hash(const std::optional<Value>& value)
{
    return value ? std::hash<Value>{}(*value) : 0;
}

} // namespace VIRLOVASTRecord
