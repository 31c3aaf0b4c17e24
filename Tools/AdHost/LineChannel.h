#pragma once

#include <nlohmann/json.hpp>

#include <QObject>
#include <QSemaphore>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

/// The two pipes to the host: lines come in on one descriptor, JSON objects go out on another, one a line. A
/// thread of its own reads, so that the end of the input is noticed even while the main thread hangs; the
/// process then ends `hangLimit` later at the latest. It also ends where the main thread takes none of
/// `mostWaitingLines` in that time. Another thread writes, so that a host that does not read stops nothing.
/// Made on the main thread; lives as long as the process.
class LineChannel : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t longestLine = std::size_t{1} << 20;
    static constexpr int mostWaitingLines = 64;
    static constexpr std::size_t mostWaitingLogs = 1000;
    static constexpr int hangLimit = 5; ///< seconds

    LineChannel(int input, int output);

    /// Begins to read and to write.
    void start();

    /// In the order of the calls. Any thread; waits for nothing.
    void write(const nlohmann::json& object);
    /// As above, but dropped while a host that does not read leaves `mostWaitingLogs` objects waiting.
    void writeLog(std::string_view message);
    /// Waits until the host has read everything, a second at most.
    void drain();

signals:
    /// Without its line end; empty for a line over `longestLine`. Main thread.
    void lineReceived(const std::string& line);
    /// The host has closed its end of a pipe. From a thread of this object, once or more often.
    void ended();

private:
    void read();
    void deliver(std::string line);
    void writeWaiting();

    const int m_input;
    const int m_output;
    QSemaphore m_room{mostWaitingLines};
    std::mutex m_mutex; ///< guards the lines to be written
    std::condition_variable m_changed;
    std::deque<std::string> m_waiting;
};
