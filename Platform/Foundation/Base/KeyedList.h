#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

namespace virlo
{

/// Values in the order in which they were added, each found by a text of its own: `Key` gives a value's. A
/// value like that of a std::vector. Short lists, as most are, take a fraction of a tree's memory and time;
/// long ones keep an index beside the values, so that no document can make them slow.
template <typename Value, std::string_view (*Key)(const Value&)>
class KeyedList
{
public:
    using const_iterator = typename std::vector<Value>::const_iterator;

    /// Null where there is none. Holds until a value is added.
    [[nodiscard]] const Value* find(std::string_view key) const
    {
        if (m_values.size() <= shortList) {
            for (const Value& value : m_values) {
                if (Key(value) == key)
                    return &value;
            }
            return nullptr;
        }
        const auto found = placeInOrder(key);
        return found != m_order.end() && Key(m_values[*found]) == key ? &m_values[*found] : nullptr;
    }

    [[nodiscard]] Value* find(std::string_view key)
    {
        return const_cast<Value*>(std::as_const(*this).find(key));
    }

    /// The value, or the one that had its key before.
    Value& insert(Value value)
    {
        if (Value* const known = find(Key(value)))
            return *known;
        m_values.push_back(std::move(value));
        if (m_values.size() > shortList)
            addLastToOrder();
        return m_values.back();
    }

    void reserve(std::size_t count) { m_values.reserve(count); }

    [[nodiscard]] const_iterator begin() const noexcept { return m_values.begin(); }

    [[nodiscard]] const_iterator end() const noexcept { return m_values.end(); }

    [[nodiscard]] std::size_t size() const noexcept { return m_values.size(); }

private:
    static constexpr std::size_t shortList = 16;

    [[nodiscard]] auto placeInOrder(std::string_view key) const
    {
        return std::lower_bound(
            m_order.begin(), m_order.end(), key,
            [this](std::uint32_t index, std::string_view wanted) { return Key(m_values[index]) < wanted; });
    }

    void addLastToOrder()
    {
        const auto last = static_cast<std::uint32_t>(m_values.size() - 1);
        if (!m_order.empty()) {
            m_order.insert(placeInOrder(Key(m_values[last])), last);
            return;
        }
        m_order.resize(m_values.size());
        std::iota(m_order.begin(), m_order.end(), 0);
        std::sort(m_order.begin(), m_order.end(), [this](std::uint32_t one, std::uint32_t other) {
            return Key(m_values[one]) < Key(m_values[other]);
        });
    }

    std::vector<Value> m_values;
    std::vector<std::uint32_t> m_order; ///< of a long list: the values' places by their keys
};

} // namespace virlo
