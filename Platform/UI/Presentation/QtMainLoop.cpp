#include "QtMainLoop.h"

#include "Guarded.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <utility>

namespace virlo
{

QtMainLoop& QtMainLoop::instance()
{
    // Other threads may post until the very end of the process.
    static auto* const loop = new QtMainLoop;
    return *loop;
}

void QtMainLoop::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_receiver) {
            m_queued.push_back(std::move(work));
            QMetaObject::invokeMethod(
                m_receiver.get(), [this] { runNext(); }, Qt::QueuedConnection);
            return;
        }
    }
    if (&MainLoop::shared() != this)
        MainLoop::shared().post(std::move(work));
}

bool QtMainLoop::runNext()
{
    std::function<void()> work;
    {
        const std::lock_guard lock(m_mutex);
        if (m_queued.empty())
            return false;
        work = std::move(m_queued.front());
        m_queued.pop_front();
    }
    runGuarded(work, "work posted to the main loop");
    return true;
}

bool QtMainLoop::runUntil(const std::function<bool()>& done, Seconds limit)
{
    using namespace std::chrono_literals;
    if (QCoreApplication::instance() == nullptr)
        return MainLoop::shared().runUntil(done, limit);
    const auto start = std::chrono::steady_clock::now();
    // Another thread may make `done` true without posting anything: each tick checks again.
    QTimer tick;
    tick.start(2ms);
    while (!done()) {
        if (std::chrono::steady_clock::now() - start >= limit)
            return done();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void QtMainLoop::flush()
{
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < Seconds(1) && runNext()) {
    }
}

void QtMainLoop::begin()
{
    MainLoop& before = MainLoop::shared();
    {
        const std::lock_guard lock(m_mutex);
        m_receiver = std::make_unique<QObject>();
        m_receiver->moveToThread(QCoreApplication::instance()->thread());
    }
    if (&before != this) {
        post([&before] {
            bool reached = false;
            before.post([&reached] { reached = true; });
            before.runUntil([&reached] { return reached; }, Seconds(1));
        });
    }
    MainLoop::setShared(this);
    qAddPostRoutine([] { instance().end(); });
}

void QtMainLoop::end()
{
    flush();
    MainLoop::setShared(nullptr);
    std::unique_ptr<QObject> receiver;
    const std::lock_guard lock(m_mutex);
    receiver.swap(m_receiver);
}

} // namespace virlo
