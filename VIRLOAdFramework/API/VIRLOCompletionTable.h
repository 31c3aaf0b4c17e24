#pragma once

#include "SerialQueue.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Completions waiting for a response, by key, so that several callers for the same object share one request.
/// Guarded by a queue of its own; any thread, but not from a block running on that queue.
template <typename Handler>
class VIRLOCompletionTable
{
public:
    explicit VIRLOCompletionTable(const char* label) : m_queue(label) {}

    /// An object's key: its identifier, or its address if it has none.
    [[nodiscard]] static std::string key(const std::optional<std::string>& identifier, const void* object)
    {
        return identifier ? "=" + *identifier
                          : "@" + std::to_string(reinterpret_cast<std::uintptr_t>(object));
    }

    /// True if `handler` is the first one for `key`: the caller makes the request.
    [[nodiscard]] bool add(const std::string& key, Handler handler)
    {
        return m_queue.read([&] {
            auto& handlers = m_handlers[key];
            handlers.push_back(std::move(handler));
            return handlers.size() == 1;
        });
    }

    /// In the order added.
    [[nodiscard]] std::vector<Handler> handlers(const std::string& key)
    {
        return m_queue.read([&] {
            const auto found = m_handlers.find(key);
            return found == m_handlers.end() ? std::vector<Handler>() : found->second;
        });
    }

    /// Removes the entry and returns its handlers. A caller that comes later makes a new request.
    std::vector<Handler> remove(const std::string& key)
    {
        return m_queue.read([&] {
            auto node = m_handlers.extract(key);
            return node ? std::move(node.mapped()) : std::vector<Handler>();
        });
    }

    /// Calls the handlers in the order added, then removes the entry. A handler added during these calls is
    /// called after the removal, so that none is lost.
    template <typename Call>
    void finish(const std::string& key, const Call& call)
    {
        const std::vector<Handler> waiting = handlers(key);
        for (const Handler& handler : waiting)
            call(handler);
        const std::vector<Handler> all = remove(key);
        for (std::size_t index = waiting.size(); index < all.size(); ++index)
            call(all[index]);
    }

private:
    virlo::SerialQueue m_queue;
    std::map<std::string, std::vector<Handler>> m_handlers;
};
