// bench-host AUTHORITY [WIDTHxHEIGHT]: a host with nothing in it but ads, for measuring from outside. Reads
// commands from standard input: "show PLACEMENT" asks for an ad, presents it and says "painted
// MILLISECONDS STALL PRESENTED", the time from the question to the first frame, the longest time that the
// main thread was not free meanwhile, and the time from the presentation on; "close" presses Menu and says
// "closed"; "down" presses that arrow; "slide SECONDS" and "scroll LINES" see SlideWatch.

#include "SlideWatch.h"

#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOAdController.h>
#include <VIRLOAdFramework/VIRLOAdPresenter.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <string>

namespace
{

/// Ticks each millisecond while an ad is on its way and keeps the longest wait between two ticks.
class StallWatch
{
public:
    StallWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { tick(); });
    }

    void start()
    {
        m_longest = 0;
        m_clock.start();
        m_timer.start();
    }

    double stop()
    {
        tick();
        m_timer.stop();
        return static_cast<double>(m_longest) / 1e6;
    }

private:
    void tick()
    {
        m_longest = std::max(m_longest, m_clock.nsecsElapsed());
        m_clock.start();
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
};

class BenchHost : public QObject
{
public:
    explicit BenchHost(QQuickWindow& window) : m_window(window)
    {
        connect(&window, &QQuickWindow::frameSwapped, this, [this] { didSwap(); });
    }

    void show(const std::string& placement)
    {
        m_waiting = true;
        m_presented = false;
        m_stall.start();
        m_sinceAsked.start();
        VIRLOAdController::sharedAdController()->adViewControllerForPlacementWithCompletion(
            placement, [this](const auto& screen, const virlo::OptionalError&) {
                QMetaObject::invokeMethod(this, [this, screen] {
                    if (!screen) {
                        std::puts("none");
                        std::fflush(stdout);
                        return;
                    }
                    m_presented = true;
                    m_sincePresented.start();
                    VIRLOAdPresenter::present(screen, &m_window, [] {
                        std::puts("closed");
                        std::fflush(stdout);
                    });
                });
            });
    }

private:
    void didSwap()
    {
        if (!m_waiting || !m_presented)
            return;
        m_waiting = false;
        const double milliseconds = static_cast<double>(m_sinceAsked.nsecsElapsed()) / 1e6;
        const double presented = static_cast<double>(m_sincePresented.nsecsElapsed()) / 1e6;
        std::printf("painted %.3f %.3f %.3f\n", milliseconds, m_stall.stop(), presented);
        std::fflush(stdout);
    }

    QQuickWindow& m_window;
    QElapsedTimer m_sinceAsked;
    QElapsedTimer m_sincePresented;
    StallWatch m_stall;
    bool m_waiting = false;
    bool m_presented = false;
};

} // namespace

int main(int count, char** arguments)
{
    QGuiApplication application(count, arguments);
    QSize size(1920, 1080);
    if (count != 2 && count != 3)
        return 2;
    if (count == 3 && std::sscanf(arguments[2], "%dx%d", &size.rwidth(), &size.rheight()) != 2)
        return 2;
    virlo::Bundle::setMainBundle("com.example.bench-host", "Bench Host", "1.0");
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(arguments[1]);
    const auto network = virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable);
    virlo::NetworkFlagsSource::setShared(network.get());

    QQuickWindow window;
    window.setColor(QColor(20, 30, 60));
    window.resize(size);
    window.show();
    window.requestActivate();
    BenchHost host(window);
    SlideWatch slide(window);
    VIRLOAdController::sharedAdController()->startWithAppIdentifier("bench-host");

    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string command;
        if (!std::getline(std::cin, command))
            return QGuiApplication::quit();
        if (command.starts_with("show "))
            host.show(command.substr(5));
        else if (command == "close")
            slide.press(Qt::Key_Escape);
        else if (command == "down")
            slide.press(Qt::Key_Down);
        else if (command.starts_with("slide "))
            slide.slide(std::stoi(command.substr(6)));
        else if (command.starts_with("scroll "))
            slide.scroll(std::stoi(command.substr(7)));
    });
    return QGuiApplication::exec();
}
