// media-exit-program URL AUTHORITIES MILLISECONDS: a program that calls exit() while it plays and shows a
// clip.

#include "GstMediaEngine.h"
#include "PlayerLayerView.h"
#include "QueuePlayer.h"
#include "URLSession.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdlib>

int main(int count, char** arguments)
{
    if (count != 4)
        return 2;
    virlo::MediaEngine::setMaker([]() -> virlo::MediaEngine* { return new virlo::GstMediaEngine; });
    QGuiApplication application(count, arguments);
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(arguments[2]);
    QQuickWindow window;
    window.resize(320, 180);
    window.show();
    const auto view = virlo::View::make<virlo::PlayerLayerView>();
    view->setParentItem(window.contentItem());
    view->setFrame(QRectF(0, 0, 320, 180));
    const auto item = [&] {
        return virlo::PlayerItem::playerItemWithURL(*virlo::URL::fromString(arguments[1]));
    };
    const auto player = virlo::QueuePlayer::queuePlayerWithItems({item(), item()});
    view->setPlayer(player);
    player->play();
    QTimer::singleShot(std::atoi(arguments[3]), &application, [] { std::exit(0); });
    return QGuiApplication::exec();
}
