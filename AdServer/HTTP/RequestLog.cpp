#include "RequestLog.h"

#include "JSONText.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace adserver
{

namespace
{

std::size_t bodiesOf(const RequestLogEntry& entry)
{
    return entry.body.size() + entry.responseBody.size();
}

} // namespace

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

void RequestLog::begin(RequestLogEntry& entry)
{
    entry.id = ++m_lastIdentifier;
    if (m_feed.isHeard())
        m_feed.publish("began", printJSON(entry.summary()));
}

void RequestLog::append(RequestLogEntry entry)
{
    if (entry.id == 0) // refused before it reached anybody
        entry.id = ++m_lastIdentifier;
    entry.end = std::chrono::system_clock::now();
    const auto line = m_writes ? printJSON(entry.toJSON()) + '\n' : std::string();
    auto summary = printJSON(entry.summary());
    if (m_feed.isHeard())
        m_feed.publish("ended", summary);
    {
        const std::lock_guard lock(m_mutex);
        if (m_entries.size() >= mostKept || m_bytes > mostBytes) {
            const auto half = static_cast<std::ptrdiff_t>((m_entries.size() + 1) / 2);
            m_entries.erase(m_entries.begin(), m_entries.begin() + half);
            m_summaries.erase(m_summaries.begin(), m_summaries.begin() + half);
            m_bytes = 0;
            for (const auto& kept : m_entries)
                m_bytes += bodiesOf(kept);
        }
        m_bytes += bodiesOf(entry);
        m_entries.push_back(std::move(entry));
        m_summaries.push_back(std::move(summary));
        if (!line.empty() && !(m_file << line << std::flush) && !std::exchange(m_reportedFailure, true))
            std::fputs("ad-server: the log cannot be written any more\n", stderr);
    }
    m_changed.notify_all();
}

void RequestLog::clear()
{
    {
        const std::lock_guard lock(m_mutex);
        m_entries.clear();
        m_summaries.clear();
        m_bytes = 0;
    }
    m_feed.publish("cleared", "{}");
}

std::vector<RequestLogEntry> RequestLog::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

std::string RequestLog::summaries() const
{
    std::string text = "[";
    const std::lock_guard lock(m_mutex);
    for (const auto& summary : m_summaries)
        text.append(text.size() > 1 ? "," : "").append(summary);
    return text += ']';
}

std::optional<RequestLogEntry> RequestLog::find(std::uint64_t identifier) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const auto& entry) { return entry.id == identifier; });
    return found == m_entries.end() ? std::nullopt : std::optional(*found);
}

bool RequestLog::waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                           std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return condition(m_entries); });
}

} // namespace adserver
