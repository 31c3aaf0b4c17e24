#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

namespace virlo
{

/// A cache bounded by a number of entries and by a total cost; the least recently used entries are removed
/// first. An entry that alone exceeds the cost limit is not kept. 0 means no limit. Values are returned as
/// copies, so `Value` is best a shared pointer. Any thread.
template <typename Key, typename Value, typename Hash = std::hash<Key>>
class MemoryCache
{
public:
    void setCountLimit(std::size_t limit)
    {
        Entries removed;
        const std::lock_guard lock(m_mutex);
        m_countLimit = limit;
        trim(removed);
    }

    void setCostLimit(std::size_t limit)
    {
        Entries removed;
        const std::lock_guard lock(m_mutex);
        m_costLimit = limit;
        trim(removed);
    }

    void set(const Key& key, Value value, std::size_t cost)
    {
        Entries removed;
        const std::lock_guard lock(m_mutex);
        remove(key, removed);
        if (m_costLimit != 0 && cost > m_costLimit)
            return;
        m_entries.push_front({key, std::move(value), cost});
        m_index[key] = m_entries.begin();
        m_totalCost += cost;
        trim(removed);
    }

    [[nodiscard]] std::optional<Value> get(const Key& key)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return std::nullopt;
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return found->second->value;
    }

    void remove(const Key& key)
    {
        Entries removed;
        const std::lock_guard lock(m_mutex);
        remove(key, removed);
    }

private:
    struct Entry {
        Key key;
        Value value;
        std::size_t cost;
    };

    using Entries = std::list<Entry>;

    // Removed entries are destroyed after the lock is released: freeing images takes time, and a value's
    // destructor may use the cache.
    void remove(const Key& key, Entries& removed)
    {
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return;
        m_totalCost -= found->second->cost;
        removed.splice(removed.end(), m_entries, found->second);
        m_index.erase(found);
    }

    void trim(Entries& removed)
    {
        while (!m_entries.empty() && ((m_countLimit != 0 && m_entries.size() > m_countLimit) ||
                                      (m_costLimit != 0 && m_totalCost > m_costLimit)))
            remove(m_entries.back().key, removed);
    }

    mutable std::mutex m_mutex;
    Entries m_entries;
    std::unordered_map<Key, typename Entries::iterator, Hash> m_index;
    std::size_t m_countLimit = 0;
    std::size_t m_costLimit = 0;
    std::size_t m_totalCost = 0;
};

} // namespace virlo
