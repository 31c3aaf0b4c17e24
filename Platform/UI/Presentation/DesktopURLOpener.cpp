#include "DesktopURLOpener.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <thread>

namespace virlo
{

bool DesktopURLOpener::open(const URL& url)
{
    using namespace std::chrono_literals;
    constexpr auto limit = 5s;
    reap();
    const std::string scheme = url.scheme();
    if (scheme.empty() || scheme == "file")
        return false;

    std::string command = "xdg-open";
    std::string text = url.absoluteString();
    const std::array<char*, 3> arguments{command.data(), text.data(), nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, command.c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
        return false;

    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
        int status = 0;
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        // The host reaps its children itself, so the exit status is unknown.
        if (ended < 0)
            return true;
        std::this_thread::sleep_for(10ms);
    }
    m_running.push_back(child);
    return true;
}

void DesktopURLOpener::reap()
{
    m_running.erase(std::remove_if(m_running.begin(), m_running.end(),
                                   [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; }),
                    m_running.end());
}

} // namespace virlo
