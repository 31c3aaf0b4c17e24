#pragma once

#include "MainLoop.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace virlo
{

/// The main loop over Qt's event loop. It puts itself in force when the program makes its QCoreApplication
/// and takes over what was posted before. When the application goes it runs what still waits and steps back
/// for the built-in loop. Work runs in the order posted, each piece in an event of its own.
class QtMainLoop : public MainLoop
{
public:
    /// Lives for the process.
    [[nodiscard]] static QtMainLoop& instance();

    void post(std::function<void()> work) override;
    bool runUntil(const std::function<bool()>& done, Seconds limit) override;

    /// Runs what waits and what that posts in turn, for at most a second. For the application's end; main
    /// thread.
    void flush();

private:
    QtMainLoop() = default;
    void begin();
    void end();
    bool runNext();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_waiting;
    std::unique_ptr<QObject> m_receiver;

    friend void startQtMainLoop();
};

} // namespace virlo
