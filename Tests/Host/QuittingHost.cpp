// quitting-host SERVER AUTHORITY MILLISECONDS WAY: a host that leaves in the middle of whatever the library
// is doing, in one of the ways in which programs leave: "quit" ends the event loop, "exit" calls exit() from
// inside it, "close" destroys the window first.

#include "Bundle.h"
#include "MainLoop.h"
#include "NetworkFlags.h"
#include "URLSession.h"
#include "VIRLOAdController.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTrackingManager.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdlib>
#include <memory>
#include <string>

int main(int count, char** arguments)
{
    if (count != 5)
        return 2;
    QGuiApplication application(count, arguments);
    virlo::Bundle::setMainBundle("com.example.quitting-host", "Quitting Host", "1.0");
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(arguments[2]);
    // Workers go on after main: what they may still come to is never destroyed.
    virlo::NetworkFlagsSource::setShared(virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable).release());
    static auto& window = *new std::unique_ptr<QQuickWindow>(new QQuickWindow);

    window->resize(640, 360);
    window->show();

    const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString(arguments[1]));
    const auto ads = VIRLOAdController::controllerWithCollaborators(
        api,
        VIRLOTrackingManager::initWithDirectoryPath(std::string(std::getenv("XDG_DATA_HOME")) + "/tracking"),
        VIRLOAppRequestStore::sharedStore());
    ads->startWithAppIdentifier("quitting-host");
    ads->adViewControllerForPlacementWithCompletion("AppLaunch", [](const auto& screen, const auto&) {
        virlo::MainLoop::performOnMain([screen] {
            if (window)
                VIRLOAdPresenter::present(screen, window.get());
        });
    });

    const std::string way = arguments[4];
    QTimer::singleShot(std::atoi(arguments[3]), &application, [&] {
        if (way == "exit")
            std::exit(0);
        if (way == "close")
            window.reset();
        QGuiApplication::quit();
    });
    const int status = QGuiApplication::exec();
    window.reset();
    return status;
}
