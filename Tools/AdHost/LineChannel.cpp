#include "LineChannel.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>
#include <unistd.h>
#include <utility>

using nlohmann::json;

namespace
{
bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}
} // namespace

LineChannel::LineChannel(int input, int output) : m_input(input), m_output(output) {}

void LineChannel::start()
{
    std::thread([this] { read(); }).detach();
    std::thread([this] { writeWaiting(); }).detach();
}

void LineChannel::drain()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::seconds(1), [this] { return m_waiting.empty(); });
}

void LineChannel::read()
{
    std::string line;
    bool isTooLong = false;
    std::array<char, 65536> chunk{};
    for (;;) {
        const ssize_t count = ::read(m_input, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        std::string_view rest(chunk.data(), static_cast<std::size_t>(count));
        for (auto end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
            line += rest.substr(0, end);
            rest.remove_prefix(end + 1);
            if (isTooLong || line.size() > longestLine)
                line.clear();
            deliver(std::exchange(line, {}));
            isTooLong = false;
        }
        line += rest;
        if (line.size() > longestLine) {
            isTooLong = true;
            line.clear();
        }
    }
    emit ended();
    std::this_thread::sleep_for(std::chrono::seconds(hangLimit));
    ::_exit(1);
}

void LineChannel::deliver(std::string line)
{
    if (!m_room.tryAcquire(1, hangLimit * 1000))
        ::_exit(1);
    QMetaObject::invokeMethod(this, [this, line = std::move(line)] {
        m_room.release();
        emit lineReceived(line);
    });
}

void LineChannel::write(const json& object)
{
    // A server's text may hold bytes that are not UTF-8.
    std::string line = object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
    const std::lock_guard lock(m_mutex);
    m_waiting.push_back(std::move(line));
    m_changed.notify_all();
}

void LineChannel::writeLog(std::string_view message)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.size() >= mostWaitingLogs)
            return;
    }
    write({{"jsonrpc", "2.0"}, {"method", "log"}, {"params", {{"message", message}}}});
}

void LineChannel::writeWaiting()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return !m_waiting.empty(); });
        const std::string line = m_waiting.front();
        lock.unlock();
        const bool isWritten = writeAll(m_output, line);
        lock.lock();
        m_waiting.pop_front();
        m_changed.notify_all();
        if (!isWritten)
            emit ended();
    }
}
