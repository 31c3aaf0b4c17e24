#include "Application.h"

#include "DesktopURLOpener.h"
#include "GlobalQueue.h"
#include "MainLoop.h"
#include "NotificationCenter.h"
#include "SerialQueue.h"
#include "URLSession.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace virlo
{

namespace
{

std::atomic<URLOpener*> openerInForce{nullptr};

bool anyWindowVisible()
{
    const auto windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(),
                       [](const QWindow* window) { return window->isVisible(); });
}

/// Follows one QGuiApplication; its signals end with it.
class Watcher : public QObject
{
public:
    explicit Watcher(QGuiApplication* application) : QObject(application)
    {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                [this] { stateMayHaveChanged(); });
        connect(application, &QGuiApplication::focusWindowChanged, this, [this] { watchWindows(); });
        connect(application, &QCoreApplication::aboutToQuit, this, &Watcher::terminate);
        stateMayHaveChanged();
    }

private:
    enum class Standing { Starting, Active, Inactive, Background };

    [[nodiscard]] Standing standing() const
    {
        switch (QGuiApplication::applicationState()) {
        case Qt::ApplicationActive:
            // Not every platform says that the app is inactive once its last window is hidden.
            if (m_standing == Standing::Starting || anyWindowVisible())
                return Standing::Active;
            return Standing::Background;
        case Qt::ApplicationInactive:
            // An app that has not been active yet is starting, not leaving; one in the background stays
            // there.
            if (m_standing == Standing::Active || m_standing == Standing::Inactive)
                return anyWindowVisible() ? Standing::Inactive : Standing::Background;
            return m_standing;
        case Qt::ApplicationHidden:
        case Qt::ApplicationSuspended:
            return Standing::Background;
        }
        return m_standing;
    }

    void stateMayHaveChanged()
    {
        const Standing now = standing();
        if (std::exchange(m_standing, now) == now)
            return;
        watchWindows();
        if (now == Standing::Active)
            NotificationCenter::defaultCenter().post(ApplicationDidBecomeActiveNotification);
        else if (now == Standing::Background)
            NotificationCenter::defaultCenter().post(ApplicationDidEnterBackgroundNotification);
    }

    /// The last window may be hidden, or shown again, without another change of state.
    void watchWindows()
    {
        const auto windows = QGuiApplication::topLevelWindows();
        for (const QWindow* window : windows)
            connect(window, &QWindow::visibleChanged, this, &Watcher::lookLater, Qt::UniqueConnection);
    }

    /// Later, since one window may go to make room for another.
    void lookLater() { QMetaObject::invokeMethod(this, &Watcher::stateMayHaveChanged, Qt::QueuedConnection); }

    void terminate()
    {
        NotificationCenter::defaultCenter().post(ApplicationWillTerminateNotification);
        const auto end = std::chrono::steady_clock::now() + Application::terminationLimit;
        const auto left = [end] {
            return std::max(Seconds(end - std::chrono::steady_clock::now()), Seconds(0));
        };
        // The closing request is queued work first, an exchange then, and its completion queued work again.
        GlobalQueue::drain(left());
        URLSession::drain(left());
        GlobalQueue::drain(left());
    }

    Standing m_standing = Standing::Starting;
};

} // namespace

void Application::openURL(const std::optional<URL>& url, std::function<void(bool)> completion)
{
    static SerialQueue& queue = *new SerialQueue("com.virlohq.URLOpener");
    queue.async([url, completion = std::move(completion)] {
        bool accepted = false;
        if (url) {
            static DesktopURLOpener& desktop = *new DesktopURLOpener;
            URLOpener* opener = openerInForce;
            accepted = (opener != nullptr ? *opener : desktop).open(*url);
        }
        if (completion)
            MainLoop::shared().post([completion, accepted] { completion(accepted); });
    });
}

void Application::require() {}

void Application::setURLOpener(URLOpener* opener)
{
    openerInForce = opener;
}

void startApplicationWatch()
{
    // The application object is still being made here.
    MainLoop::shared().post([] {
        if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
            new Watcher(application);
    });
}

Q_COREAPP_STARTUP_FUNCTION(startApplicationWatch)

} // namespace virlo
