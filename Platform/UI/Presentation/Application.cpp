#include "Application.h"

#include "DesktopURLOpener.h"
#include "GlobalQueue.h"
#include "MainLoop.h"
#include "MainScreen.h"
#include "NotificationCenter.h"
#include "QtMainLoop.h"
#include "SerialQueue.h"
#include "URLSession.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

std::atomic<URLOpener*> currentOpener{nullptr};
std::atomic<bool> followsWindows{true};

bool anyWindowVisible()
{
    const auto windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(),
                       [](const QWindow* window) { return window->isVisible(); });
}

/// Follows one QGuiApplication, which owns it.
class ApplicationObserver : public QObject
{
public:
    explicit ApplicationObserver(QGuiApplication* application) : QObject(application)
    {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                [this] { stateMayHaveChanged(); });
        connect(application, &QGuiApplication::focusWindowChanged, this, [this] { watchWindows(); });
        connect(application, &QCoreApplication::aboutToQuit, this, &ApplicationObserver::terminate);
        stateMayHaveChanged();
    }

private:
    enum class Activity { Starting, Active, Inactive, Background };

    [[nodiscard]] Activity activity() const
    {
        switch (QGuiApplication::applicationState()) {
        case Qt::ApplicationActive:
            // Not every platform says that the app is inactive once its last window is hidden.
            if (m_activity == Activity::Starting || anyWindowVisible())
                return Activity::Active;
            return Activity::Background;
        case Qt::ApplicationInactive:
            // An app that has not been active yet is starting, not leaving; one in the background stays
            // there.
            if (m_activity == Activity::Active || m_activity == Activity::Inactive)
                return anyWindowVisible() ? Activity::Inactive : Activity::Background;
            return m_activity;
        case Qt::ApplicationHidden:
        case Qt::ApplicationSuspended:
            return Activity::Background;
        }
        return m_activity;
    }

    void stateMayHaveChanged()
    {
        MainScreen::refresh();
        const Activity now = activity();
        if (std::exchange(m_activity, now) == now || !followsWindows)
            return;
        watchWindows();
        if (now == Activity::Active)
            NotificationCenter::defaultCenter().post(ApplicationDidBecomeActiveNotification);
        else if (now == Activity::Background)
            NotificationCenter::defaultCenter().post(ApplicationDidEnterBackgroundNotification);
    }

    /// The last window may be hidden, or shown again, without another change of state.
    void watchWindows()
    {
        MainScreen::refresh();
        const auto windows = QGuiApplication::topLevelWindows();
        for (const QWindow* window : windows) {
            connect(window, &QWindow::visibleChanged, this, &ApplicationObserver::checkLater,
                    Qt::UniqueConnection);
            connect(window, &QWindow::widthChanged, this, &ApplicationObserver::checkLater,
                    Qt::UniqueConnection);
            connect(window, &QWindow::heightChanged, this, &ApplicationObserver::checkLater,
                    Qt::UniqueConnection);
        }
    }

    /// Later, since one window may go to make room for another.
    void checkLater()
    {
        QMetaObject::invokeMethod(this, &ApplicationObserver::stateMayHaveChanged, Qt::QueuedConnection);
    }

    void terminate()
    {
        NotificationCenter::defaultCenter().post(ApplicationWillTerminateNotification);
        const auto end = std::chrono::steady_clock::now() + Application::terminationLimit;
        const auto remaining = [end] {
            return std::max(Seconds(end - std::chrono::steady_clock::now()), Seconds(0));
        };
        // The closing request is queued work first, then a transfer, and its completion is queued work again.
        GlobalQueue::drain(remaining());
        URLSession::drain(remaining());
        GlobalQueue::drain(remaining());
    }

    Activity m_activity = Activity::Starting;
};

} // namespace

void Application::openURL(const std::optional<URL>& url, std::function<void(bool)> completion)
{
    static SerialQueue& queue = *new SerialQueue("com.virlohq.URLOpener");
    queue.async([url, completion = std::move(completion)] {
        bool accepted = false;
        if (url) {
            static DesktopURLOpener& desktop = *new DesktopURLOpener;
            URLOpener* opener = currentOpener;
            accepted = (opener != nullptr ? *opener : desktop).open(*url);
        }
        if (completion)
            MainLoop::shared().post([completion, accepted] { completion(accepted); });
    });
}

void Application::setURLOpener(URLOpener* opener)
{
    currentOpener = opener;
}

void Application::setFollowsWindows(bool follows)
{
    followsWindows = follows;
}

void Application::start()
{
    static std::once_flag once;
    // Runs at once where there is an application object already, else each time that one is made.
    std::call_once(once, [] {
        qAddPreRoutine([] {
            QtMainLoop::instance().begin();
            // The application object is still under construction here.
            MainLoop::shared().post([] {
                if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
                    new ApplicationObserver(application);
            });
        });
    });
}

} // namespace virlo
