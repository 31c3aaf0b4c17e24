#include "RequestLog.h"

#include "JSONText.h"

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace adserver
{

void RequestLog::open(const std::filesystem::path& file)
{
    const std::lock_guard lock(m_mutex);
    m_file = {};
    m_writes = !file.empty();
    if (!m_writes)
        return;
    m_file.open(file, std::ios::app);
    if (!m_file)
        throw std::runtime_error("cannot write the log " + file.string());
}

void RequestLog::append(const RequestLogEntry& entry)
{
    const auto line = m_writes ? printJSON(entry.toJSON()) + '\n' : std::string();
    {
        const std::lock_guard lock(m_mutex);
        if (m_entries.size() >= mostKept)
            m_entries.erase(m_entries.begin(), m_entries.begin() + mostKept / 2);
        m_entries.push_back(entry);
        if (!line.empty() && !(m_file << line << std::flush) && !std::exchange(m_reportedFailure, true))
            std::fputs("ad-server: the log cannot be written any more\n", stderr);
    }
    m_changed.notify_all();
}

void RequestLog::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

std::vector<RequestLogEntry> RequestLog::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

bool RequestLog::waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                           std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return condition(m_entries); });
}

} // namespace adserver
