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
    std::recursive_mutex sinkCalls; // a sink may log or set another sink
    std::shared_ptr<const Sink> sink;
};

Output& output()
{
    static auto* const instance = new Output; // never destroyed: threads log until the process ends
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

/// Control characters beyond ASCII, and the separators that some viewers show as line ends.
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

/// `write`, without the SIGPIPE that ends the host if nobody reads the pipe any more.
ssize_t writeWithoutSignal(std::string_view text)
{
    sigset_t pipe;
    sigset_t before;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, &before);
    const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    const int code = errno;
    if (written < 0 && code == EPIPE) {
        const timespec noWait{};
        sigtimedwait(&pipe, nullptr, &noWait);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = code;
    return written;
}

void writeToStandardError(const std::string& message)
{
    // A reader that has stopped reading costs the rest of the line rather than block the writer for good.
    constexpr int timeout = 1000;
    const std::string line = prefix() + message + '\n';
    const std::lock_guard lock(output().standardError);
    for (std::string_view rest = line; !rest.empty();) {
        const ssize_t written = writeWithoutSignal(rest);
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd writable{STDERR_FILENO, POLLOUT, 0};
            if (::poll(&writable, 1, timeout) <= 0)
                return;
        } else if (errno != EINTR) {
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
