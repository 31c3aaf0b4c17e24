#include "StandardErrorTap.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace
{

constexpr std::size_t longestLine = 4096;

void writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const auto count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR)
            return;
        text.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
}

} // namespace

StandardErrorTap::StandardErrorTap(std::function<void(const std::string&)> line) : m_line(std::move(line))
{
    std::array<int, 2> ends{};
    m_before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (m_before < 0 || ::pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[1]);
    m_thread = std::thread([this, source = ends[0]] { pass(source); });
}

StandardErrorTap::~StandardErrorTap()
{
    if (!m_thread.joinable())
        return;
    // The pipe's last writing end closes with this, and the thread ends.
    ::dup2(m_before, STDERR_FILENO);
    m_thread.join();
    ::close(m_before);
}

void StandardErrorTap::pass(int source) const
{
    std::array<char, 4096> buffer{};
    std::string line;
    for (;;) {
        const auto count = ::read(source, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        const std::string_view text(buffer.data(), static_cast<std::size_t>(count));
        writeAll(m_before, text);
        for (const char letter : text) {
            if (letter != '\n' && line.size() < longestLine) {
                line += letter;
                continue;
            }
            m_line(line);
            line.assign(letter == '\n' ? 0 : 1, letter);
        }
    }
    ::close(source);
}
