#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>

/// What the host did lately, as server-sent events: {"time", "kind", "text"}, kind being "log", "focus" or
/// "key". A new reader gets the last `mostKept` first. Safe from any thread.
class EventStream
{
public:
    static constexpr std::size_t mostKept = 500;

    void add(const char* kind, const QString& text);
    /// What came after that number, which becomes the last one's; a comment after some seconds without any,
    /// empty once closed.
    [[nodiscard]] QByteArray next(std::uint64_t& after);
    void close();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<QByteArray> m_events;
    std::uint64_t m_last = 0; ///< number of the last event
    bool m_isClosed = false;
};
