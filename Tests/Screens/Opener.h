#pragma once

#include "Application.h"
#include "Settle.h"

#include <mutex>
#include <string>
#include <vector>

namespace virlo::test
{

/// Records what the library asks it to open, and refuses `refused`. In use while it exists.
class Opener : public URLOpener
{
public:
    Opener() { Application::setURLOpener(this); }

    ~Opener() override
    {
        settleAll();
        Application::setURLOpener(nullptr);
    }

    bool open(const URL& url) override
    {
        const std::lock_guard lock(m_mutex);
        m_opened.push_back(url.path());
        return url.absoluteString() != refused;
    }

    [[nodiscard]] std::vector<std::string> opened() const
    {
        const std::lock_guard lock(m_mutex);
        return m_opened;
    }

    std::string refused;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_opened;
};

} // namespace virlo::test
