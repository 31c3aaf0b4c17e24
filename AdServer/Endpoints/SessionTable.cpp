#include "SessionTable.h"

#include "RandomIdentifier.h"

namespace adserver
{

SessionTable::SessionTable(std::chrono::milliseconds pingInterval, std::chrono::milliseconds lifetime)
    : m_pingInterval(pingInterval)
    , m_lifetime(lifetime)
{
}

nlohmann::json SessionTable::open(const std::string& app, TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_sessions, [&](const auto& entry) { return now - entry.second.keptUp > m_lifetime; });
    const auto session = randomIdentifier();
    m_sessions[session] = {.app = app, .keptUp = now};
    return response(session, now);
}

std::optional<nlohmann::json> SessionTable::keepUp(const std::string& session, const nlohmann::json& report,
                                                   TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    const auto found = find(session, now);
    if (found == m_sessions.end())
        return std::nullopt;
    found->second.keptUp = now;
    found->second.report.update(report);
    return response(session, now);
}

bool SessionTable::isOpen(const std::string& session, TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    return find(session, now) != m_sessions.end();
}

bool SessionTable::close(const std::string& session, TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    const auto found = find(session, now);
    if (found == m_sessions.end())
        return false;
    m_sessions.erase(found);
    return true;
}

void SessionTable::expireAll()
{
    const std::lock_guard lock(m_mutex);
    m_sessions.clear();
}

void SessionTable::setPingInterval(std::chrono::milliseconds interval)
{
    const std::lock_guard lock(m_mutex);
    m_pingInterval = interval;
}

nlohmann::json SessionTable::describe() const
{
    const std::lock_guard lock(m_mutex);
    auto list = nlohmann::json::array();
    for (const auto& [identifier, session] : m_sessions)
        list.push_back({{"sessionId", identifier},
                        {"app", session.app},
                        {"keptUp", logTimestamp(session.keptUp)},
                        {"report", session.report}});
    return list;
}

SessionTable::Sessions::iterator SessionTable::find(const std::string& session, TimePoint now)
{
    const auto found = m_sessions.find(session);
    if (found == m_sessions.end() || now - found->second.keptUp <= m_lifetime)
        return found;
    m_sessions.erase(found);
    return m_sessions.end();
}

nlohmann::json SessionTable::response(const std::string& session, TimePoint now) const
{
    return {{"sessionId", session},
            {"pingInterval", static_cast<double>(m_pingInterval.count()) / 1000.0},
            {"status", "SESSION_ACTIVE"},
            {"timestamp", sessionTimestamp(now)}};
}

} // namespace adserver
