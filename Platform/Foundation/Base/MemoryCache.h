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

/// Values kept while they fit: beyond `countLimit` entries or `costLimit` in total the least recently used go
/// first; an entry that alone exceeds the cost limit is not kept. 0 means no limit. Values are handed out as
/// copies, so `Value` is best a shared pointer. Any thread.
template <typename Key, typename Value, typename Hash = std::hash<Key>>
class MemoryCache
{
public:
    void setCountLimit(std::size_t limit)
    {
        Entries gone;
        const std::lock_guard lock(m_mutex);
        m_countLimit = limit;
        trim(gone);
    }

    void setCostLimit(std::size_t limit)
    {
        Entries gone;
        const std::lock_guard lock(m_mutex);
        m_costLimit = limit;
        trim(gone);
    }

    void set(const Key& key, Value value, std::size_t cost)
    {
        Entries gone;
        const std::lock_guard lock(m_mutex);
        take(key, gone);
        if (m_costLimit != 0 && cost > m_costLimit)
            return;
        m_entries.push_front({key, std::move(value), cost});
        m_index[key] = m_entries.begin();
        m_totalCost += cost;
        trim(gone);
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
        Entries gone;
        const std::lock_guard lock(m_mutex);
        take(key, gone);
    }

    void removeAll()
    {
        Entries gone;
        const std::lock_guard lock(m_mutex);
        m_index.clear();
        gone.swap(m_entries);
        m_totalCost = 0;
    }

    [[nodiscard]] std::size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_entries.size();
    }

    [[nodiscard]] std::size_t totalCost() const
    {
        const std::lock_guard lock(m_mutex);
        return m_totalCost;
    }

private:
    struct Entry {
        Key key;
        Value value;
        std::size_t cost;
    };

    using Entries = std::list<Entry>;

    // What goes is handed to a list that outlives the lock: freeing pictures takes time, and a value may use
    // the cache.
    void take(const Key& key, Entries& gone)
    {
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return;
        m_totalCost -= found->second->cost;
        gone.splice(gone.end(), m_entries, found->second);
        m_index.erase(found);
    }

    void trim(Entries& gone)
    {
        while (!m_entries.empty() && ((m_countLimit != 0 && m_entries.size() > m_countLimit) ||
                                      (m_costLimit != 0 && m_totalCost > m_costLimit)))
            take(m_entries.back().key, gone);
    }

    mutable std::mutex m_mutex;
    Entries m_entries;
    std::unordered_map<Key, typename Entries::iterator, Hash> m_index;
    std::size_t m_countLimit = 0;
    std::size_t m_costLimit = 0;
    std::size_t m_totalCost = 0;
};

} // namespace virlo
