#pragma once

#include "MainLoop.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace virlo
{

/// The main loop over Qt's event loop. From `begin` on it is the shared one and takes over what was posted
/// before. When the application object is destroyed it runs what is still queued and restores the built-in
/// loop. Tasks run in the order posted, each in an event of its own.
class QtMainLoop : public MainLoop
{
public:
    /// Lives for the process.
    [[nodiscard]] static QtMainLoop& instance();

    void post(std::function<void()> work) override;
    bool runUntil(const std::function<bool()>& done, Seconds limit) override;

    /// Called by `Application::start` for each application object, during its construction or later.
    void begin();
    /// Runs what is queued and what that posts in turn, for at most a second. For the application's end; main
    /// thread.
    void flush();

private:
    QtMainLoop() = default;
    void end();
    bool runNext();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_queued;
    std::unique_ptr<QObject> m_receiver;
};

} // namespace virlo
