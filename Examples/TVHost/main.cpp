#include "AdIntegration.h"
#include "AppPages.h"
#include "Game.h"
#include "Scenario.h"

#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOConstans.h>

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QScreen>
#include <QTimer>

#include <cstdio>

namespace
{

/// Empty where the text is none.
QSize sizeOf(const QString& text)
{
    const QStringList sides = text.split('x');
    return sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
}

} // namespace

int main(int count, char** arguments)
{
    QGuiApplication application(count, arguments);
    QCommandLineParser options;
    options.setApplicationDescription("A small game menu that shows ads.");
    options.addHelpOption();
    options.addOption({"authority", "Trust the certificates of this authority too.", "PEM"});
    options.addOptions(
        {{"scenario", "Play the steps of this file and quit.", "JSON"},
         {"images", "Leave the scenario's images in this folder.", "DIR", "."},
         {"log", "The ad server's request log, which the scenario waits for.", "FILE"},
         {"size", "The window's size (default: the whole screen; 1920x1080 for a scenario).", "WxH"}});
    options.process(application);
    const QSize size = sizeOf(options.value("size"));
    if (options.isSet("size") && size.isEmpty()) {
        std::fputs("tv-host: --size needs a width and a height in pixels, as in 1280x720\n", stderr);
        return 2;
    }

    virlo::Bundle::setMainBundle("com.example.ember-trail", "Ember Trail", "2.4");
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(
        options.value("authority").toStdString());
    // The ad server of this demo is on the loopback, so the box counts as connected without any other route.
    // The library may ask for the flags until the process ends, so they are never destroyed.
    virlo::NetworkFlagsSource::setShared(virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable).release());

    Game game;
    // The inspector page's live view asks the game for ads by this.
    application.setProperty("virloAdRequester", QVariant::fromValue<QObject*>(&game));
    QQuickView window;
    // First of all: the ad is on its way while the menu is made.
    const auto ads = std::make_shared<AdIntegration>(window, game);
    ads->start();
    if (!options.isSet("scenario"))
        ads->showAd(VIRLOAdFrameworkPlacementAppLaunch);
    window.setTitle("Ember Trail");
    window.setResizeMode(QQuickView::SizeRootObjectToView);
    window.engine()->addImportPath("qrc:/qt/qml");
    window.setInitialProperties({{"game", QVariant::fromValue(&game)}});
    window.setSource(QUrl("qrc:/qt/qml/TVHost/HostMenu.qml"));
    QObject::connect(window.engine(), &QQmlEngine::quit, &application, &QGuiApplication::quit);

    if (!options.isSet("scenario") && size.isEmpty()) {
        // The whole screen, also without a window manager that would see to it.
        window.setGeometry(window.screen()->geometry());
        window.showFullScreen();
        window.requestActivate();
        return QGuiApplication::exec();
    }
    window.resize(size.isEmpty() ? QSize(1920, 1080) : size);
    window.show();
    window.requestActivate();
    if (!options.isSet("scenario"))
        return QGuiApplication::exec();

    AppPages pages;
    virlo::Application::setURLOpener(&pages);
    bool good = false;
    QTimer::singleShot(0, [&] {
        Scenario scenario(window, game, *ads, pages, {options.value("images"), options.value("log")});
        good = scenario.play(options.value("scenario"));
        QGuiApplication::quit();
    });
    QGuiApplication::exec();
    virlo::Application::setURLOpener(nullptr);
    return good ? 0 : 1;
}
