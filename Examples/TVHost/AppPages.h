#pragma once

#include <VIRLOAdFramework/Application.h>

#include <mutex>
#include <string>

/// Stands in for the box's app store: keeps the page it was sent to. Any thread.
class AppPages : public virlo::URLOpener
{
public:
    bool open(const virlo::URL& url) override
    {
        const std::lock_guard lock(m_mutex);
        m_last = url.absoluteString();
        return true;
    }

    [[nodiscard]] std::string last() const
    {
        const std::lock_guard lock(m_mutex);
        return m_last;
    }

private:
    mutable std::mutex m_mutex;
    std::string m_last;
};
