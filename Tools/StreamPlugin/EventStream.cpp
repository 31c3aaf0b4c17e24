#include "EventStream.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>
#include <chrono>

void EventStream::add(const char* kind, const QString& text)
{
    const QJsonObject event{{"time", QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                            {"kind", kind},
                            {"text", text}};
    const auto line = "data: " + QJsonDocument(event).toJson(QJsonDocument::Compact) + "\n\n";
    {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(line);
        ++m_last;
        if (m_events.size() > mostKept)
            m_events.pop_front();
    }
    m_changed.notify_all();
}

QByteArray EventStream::next(std::uint64_t& after)
{
    constexpr auto heartbeat = std::chrono::seconds(5);
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, heartbeat, [&] { return m_isClosed || m_last > after; }))
        return ": still here\n\n";
    if (m_isClosed)
        return {};
    QByteArray text;
    const auto count = std::min<std::uint64_t>(m_last - after, m_events.size());
    for (auto event = m_events.end() - static_cast<std::ptrdiff_t>(count); event != m_events.end(); ++event)
        text += *event;
    after = m_last;
    return text;
}

void EventStream::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_all();
}
