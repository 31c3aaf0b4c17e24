#pragma once

#include <functional>
#include <string>
#include <thread>

/// Hands each line that the process writes to standard error to `line`, on a thread of its own, and passes
/// everything on to where it went before. Its end puts that back.
class StandardErrorTap
{
public:
    explicit StandardErrorTap(std::function<void(const std::string&)> line);
    ~StandardErrorTap();
    StandardErrorTap(const StandardErrorTap&) = delete;
    StandardErrorTap& operator=(const StandardErrorTap&) = delete;

private:
    void pass(int source) const;

    const std::function<void(const std::string&)> m_line;
    int m_before = -1;
    std::thread m_thread;
};
