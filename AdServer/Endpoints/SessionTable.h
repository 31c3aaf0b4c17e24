#pragma once

#include "Dates.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace adserver
{

/// The open sessions. Safe from any thread. What a client reports replaces what it reported before.
class SessionTable
{
public:
    SessionTable(std::chrono::milliseconds pingInterval, std::chrono::milliseconds lifetime);

    /// The response's JSON.
    [[nodiscard]] nlohmann::json open(const std::string& app, TimePoint now);
    /// Keeps the session up and takes `report` in. Nothing when there is no such session or it has expired.
    [[nodiscard]] std::optional<nlohmann::json> keepUp(const std::string& session,
                                                       const nlohmann::json& report, TimePoint now);
    [[nodiscard]] bool isOpen(const std::string& session, TimePoint now);
    [[nodiscard]] bool close(const std::string& session, TimePoint now);

    void expireAll();
    void setPingInterval(std::chrono::milliseconds interval);
    /// [{"sessionId","app","keptUp","report"}]
    [[nodiscard]] nlohmann::json describe() const;

private:
    struct Session {
        std::string app;
        TimePoint keptUp;
        nlohmann::json report = nlohmann::json::object();
    };

    using Sessions = std::map<std::string, Session>;

    [[nodiscard]] Sessions::iterator find(const std::string& session, TimePoint now);
    [[nodiscard]] nlohmann::json response(const std::string& session, TimePoint now) const;

    mutable std::mutex m_mutex;
    Sessions m_sessions;
    std::chrono::milliseconds m_pingInterval;
    const std::chrono::milliseconds m_lifetime;
};

} // namespace adserver
