// quitting-host SERVER AUTHORITY MILLISECONDS WAY: a host that ends while the library shows an ad, plays a
// video and sends requests, in one of the ways in which programs end: "quit" ends the event loop, "exit"
// calls exit() from inside it, "close" destroys the window first.

#include "Bundle.h"
#include "MainLoop.h"
#include "NetworkFlags.h"
#include "PlayerLayerView.h"
#include "QueuePlayer.h"
#include "URLSession.h"
#include "VIRLOAdController.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdStoryboardScreens.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTrackingManager.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdlib>
#include <memory>
#include <string>

namespace
{
/// Keeps a request active for ever: each completion sends the next.
void requestForever(const std::shared_ptr<virlo::URLSession>& session, const virlo::URL& url)
{
    session
        ->dataTask(virlo::URLRequest{url},
                   [session, url](const auto&, const auto&, const auto&) { requestForever(session, url); })
        ->resume();
}
} // namespace

int main(int count, char** arguments)
{
    if (count != 5)
        return 2;
    VIRLOAdStoryboardScreens::start();
    QGuiApplication application(count, arguments);
    virlo::Bundle::setMainBundle("com.example.quitting-host", "Quitting Host", "1.0");
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(arguments[2]);
    // Workers run on after main: what they may still use is never destroyed.
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

    for (int requests = 0; requests < 6; ++requests)
        requestForever(virlo::URLSession::sessionWithConfiguration(
                           virlo::URLSessionConfiguration::defaultConfiguration()),
                       *virlo::URL::fromString(arguments[1]));
    const auto item = [&] {
        return virlo::PlayerItem::playerItemWithURL(*virlo::URL::fromString(
            arguments[1] + std::string("/campaigns/clips/wildgrove-silent-720p.mp4")));
    };
    const auto player = virlo::QueuePlayer::queuePlayerWithItems({item(), item()});
    const auto video = virlo::View::make<virlo::PlayerLayerView>();
    video->setParentItem(window->contentItem());
    video->setFrame(QRectF(0, 0, 320, 180));
    video->setPlayer(player);
    player->play();

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
