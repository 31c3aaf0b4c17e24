#include "SystemLog.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>
#include <mutex>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace virlo
{

namespace
{

using Sink = std::function<void(std::string_view)>;

struct Output {
    std::mutex standardError;
    std::recursive_mutex sinkCalls; // a sink may log or put another in its place
    std::shared_ptr<const Sink> sink;
};

Output& output()
{
    static auto* const instance = new Output; // threads may log to the process's very end
    return *instance;
}

thread_local bool insideSink = false;

void appendEscaped(std::string& line, unsigned char byte)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "\\x%02x", byte);
    line += text.data();
}

/// The length of the well-formed UTF-8 character that `text` begins with, or 0.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80)
            return 0;
    }
    const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
    const bool noCharacter = (byte(0) == 0xED && byte(1) > 0x9F) || (byte(0) == 0xF4 && byte(1) > 0x8F);
    return overlong || noCharacter ? 0 : length;
}

/// Controls beyond ASCII, and the separators that some viewers take for line ends.
bool isControl(std::string_view character)
{
    const auto byte = [character](std::size_t index) { return static_cast<unsigned char>(character[index]); };
    return (byte(0) == 0xC2 && byte(1) < 0xA0) || character == "\u2028" || character == "\u2029";
}

std::string escaped(std::string_view message)
{
    std::string line;
    line.reserve(message.size());
    while (!message.empty()) {
        const auto byte = static_cast<unsigned char>(message.front());
        std::size_t length = 1;
        if (byte == '\n')
            line += "\\n";
        else if (byte == '\r')
            line += "\\r";
        else if (byte == '\t')
            line += "\\t";
        else if (byte >= 0x20 && byte < 0x7F)
            line += message.front();
        else if (const auto whole = characterLength(message);
                 whole > 0 && !isControl(message.substr(0, whole)))
            line += message.substr(0, length = whole);
        else
            appendEscaped(line, byte);
        message.remove_prefix(length);
    }
    return line;
}

std::string prefix()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> moment{};
    std::strftime(moment.data(), moment.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s.%03d ", moment.data(), static_cast<int>(milliseconds));
    return text.data() + std::string(program_invocation_short_name) + '[' + std::to_string(getpid()) + "] ";
}

/// A reader of our standard error that has gone must not end the host, so the signal it would send is taken
/// back.
class BrokenPipeGuard
{
public:
    BrokenPipeGuard()
    {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }

    ~BrokenPipeGuard()
    {
        if (m_broken && !m_wasPending) {
            const timespec atOnce{};
            while (sigtimedwait(&m_pipe, nullptr, &atOnce) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

    void noteBroken() { m_broken = true; }

private:
    sigset_t m_pipe{};
    sigset_t m_before{};
    bool m_wasPending = false;
    bool m_broken = false;
};

void writeToStandardError(const std::string& message)
{
    // A reader that stands still for longer than this loses the rest of the line rather than stop the writer
    // for good.
    constexpr int patience = 1000;
    const std::string line = prefix() + message + '\n';
    const std::lock_guard lock(output().standardError);
    BrokenPipeGuard guard;
    for (std::string_view rest = line; !rest.empty();) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd writable{STDERR_FILENO, POLLOUT, 0};
            if (::poll(&writable, 1, patience) <= 0)
                return;
        } else if (errno != EINTR) {
            if (errno == EPIPE)
                guard.noteBroken();
            return;
        }
    }
}

} // namespace

void systemLog(std::string_view message)
{
    if (message.ends_with('\n'))
        message.remove_suffix(1);
    const std::string line = escaped(message);
    if (!insideSink) {
        const std::lock_guard lock(output().sinkCalls);
        if (const auto sink = output().sink) {
            insideSink = true;
            try {
                (*sink)(line);
            } catch (...) { // a host's log that throws has lost the line; nobody here can mend it
            }
            insideSink = false;
            return;
        }
    }
    writeToStandardError(line);
}

void setSystemLogSink(std::function<void(std::string_view message)> sink)
{
    const std::lock_guard lock(output().sinkCalls);
    output().sink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

} // namespace virlo
