#pragma once

#include <VIRLOAdFramework/Application.h>

#include <mutex>
#include <string>

/// In place of the device's app store: keeps the address of the page that it was asked to open. Any thread.
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
