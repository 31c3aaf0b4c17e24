#include "Benchmarks.h"
#include "JSONSerialization.h"
#include "TestImages.h"

#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdViewController.h"
#include "VIRLOAdvertisement.h"

#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <memory>
#include <stdexcept>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int rounds = 15;
constexpr const char* scene = "qrc:/qt/qml/VIRLOAdFramework/Storyboard/QDXAdFullscreenViewController.qml";

const std::string& response()
{
    static const std::string text =
        R"({"txid":"bench","type":"engagement","secondsToSkip":5,)"
        R"("timestamp":"Tue Mar 01 10:20:30 GMT 2016","ads":[{"cid":"bench","type":"content",)"
        R"("title":"Bench","impressionUrl":"https://localhost:1/impression",)"
        R"("actionButton":{"actionType":"CLICK_TO_CONTENT","text":"Look","textRed":255,)"
        R"("textGreen":255,"textBlue":255,"xPosition":1200,"yPosition":800}}]})";
    return text;
}

std::shared_ptr<VIRLOAdvertisement> advertisement()
{
    return VIRLOAdvertisement::initWithDictionary(
        std::get<virlo::JSON>(virlo::JSONSerialization::objectWithData(response())));
}

struct Ready {
    std::shared_ptr<VIRLOAdViewController> screen;
    double seconds;
};

Ready readyScreen(const std::shared_ptr<VIRLOAdServerAPI>& api)
{
    QEventLoop loop;
    Ready ready{};
    const auto start = Clock::now();
    VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
        advertisement(), api,
        [&](std::shared_ptr<VIRLOAdViewController> screen, const virlo::OptionalError&) {
            const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
            QMetaObject::invokeMethod(
                &loop,
                [&loop, &ready, seconds, screen = std::move(screen)] {
                    ready = {screen, seconds};
                    loop.quit();
                },
                Qt::QueuedConnection);
        });
    loop.exec();
    if (!ready.screen)
        throw std::runtime_error("there is no screen");
    return ready;
}

double presentedToFirstFrame(QQuickWindow& window, const Ready& ready)
{
    QEventLoop loop;
    Clock::time_point painted;
    const auto connection = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] {
        painted = Clock::now();
        loop.quit();
    });
    const auto start = Clock::now();
    VIRLOAdPresenter::present(ready.screen, &window);
    loop.exec();
    QObject::disconnect(connection);
    const double seconds = std::chrono::duration<double>(painted - start).count();

    QEventLoop ending;
    VIRLOAdPresenter::dismiss(ready.screen);
    QMetaObject::invokeMethod(&ending, &QEventLoop::quit, Qt::QueuedConnection);
    ending.exec();
    return seconds;
}

} // namespace

void benchScreen(Results& results)
{
    takeFreshMemory();
    const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString("https://localhost:1"));
    const auto store = VIRLOAdFullscreenImageStore::sharedStore();
    store->setImageForItem(adImage(1), *advertisement()->items().front());
    const QString image = QString::fromStdString(store->imageCacheDirectory() + "bench");

    QQmlEngine engine;
    engine.addImportPath("qrc:/qt/qml");
    QQmlComponent component(&engine, QUrl(scene));
    const auto bare = [&] {
        return timed([&] {
            const auto parsed = nlohmann::json::parse(response());
            QFile file(image);
            if (parsed.empty() || !file.open(QIODevice::ReadOnly) ||
                QImage::fromData(file.readAll()).isNull())
                throw std::runtime_error("the image does not decode");
            const std::unique_ptr<QObject> made(component.create());
            if (!made)
                throw std::runtime_error(component.errorString().toStdString());
        });
    };

    QQuickWindow window;
    window.resize(1920, 1080);
    window.show();
    std::vector<double> frames;
    const Pair ready = alternate(
        rounds,
        [&] {
            const Ready screen = readyScreen(api);
            frames.push_back(presentedToFirstFrame(window, screen));
            return screen.seconds;
        },
        bare);
    results.addRatio("response received to screen ready, image on disk", ready.ours * 1e3, ready.bare * 1e3,
                     "ms", 1.2, true);
    results.addLimit("ready screen presented to first frame, 1920x1080", median(frames) * 1e3, "ms", 100);
}
