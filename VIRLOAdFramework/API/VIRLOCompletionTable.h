#pragma once

#include "SerialQueue.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Who waits for which answer, so that several callers who want one thing share one request. A table on a
/// labelled queue of its own; any thread, but not from work on that queue.
template <typename Handler>
class VIRLOCompletionTable
{
public:
    explicit VIRLOCompletionTable(const char* label) : m_queue(label) {}

    /// What stands for a thing in the table: its identifier, or for a thing without one that very object.
    [[nodiscard]] static std::string key(const std::optional<std::string>& identifier, const void* object)
    {
        return identifier ? "=" + *identifier
                          : "@" + std::to_string(reinterpret_cast<std::uintptr_t>(object));
    }

    /// True where nobody waited for `key` yet: the caller makes the request.
    [[nodiscard]] bool add(const std::string& key, Handler handler)
    {
        return m_queue.read([&] {
            auto& handlers = m_handlers[key];
            handlers.push_back(std::move(handler));
            return handlers.size() == 1;
        });
    }

    /// Those who wait, in the order added.
    [[nodiscard]] std::vector<Handler> handlers(const std::string& key)
    {
        return m_queue.read([&] {
            const auto found = m_handlers.find(key);
            return found == m_handlers.end() ? std::vector<Handler>() : found->second;
        });
    }

    void remove(const std::string& key)
    {
        m_queue.sync([&] { m_handlers.erase(key); });
    }

    /// Calls each who waits in the order added, then removes the entry. One who came while the calls ran is
    /// called after the removal, so nobody is lost and one who asks again from inside such a call makes a new
    /// request.
    template <typename Call>
    void finish(const std::string& key, const Call& call)
    {
        const std::vector<Handler> waiting = handlers(key);
        for (const Handler& handler : waiting)
            call(handler);
        std::vector<Handler> rest = m_queue.read([&] {
            auto node = m_handlers.extract(key);
            return node ? std::move(node.mapped()) : std::vector<Handler>();
        });
        for (std::size_t index = waiting.size(); index < rest.size(); ++index)
            call(rest[index]);
    }

private:
    virlo::SerialQueue m_queue;
    std::map<std::string, std::vector<Handler>> m_handlers;
};
