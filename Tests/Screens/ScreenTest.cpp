#include "ScreenTest.h"

#include "ActivityIndicatorView.h"
#include "Button.h"
#include "ImageView.h"
#include "NetworkFlags.h"
#include "Settle.h"
#include "TemporaryFolder.h"
#include "URLSession.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdController.h"
#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdStoryboardScreens.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOTimerButton.h"
#include "VIRLOTrackingManager.h"

#include <QBuffer>

#include <cstdlib>
#include <optional>

namespace virlo::test
{

namespace
{

/// Shared by all tests of the program: the stores are the process's, and so are their folders.
class Surroundings : public testing::Environment
{
public:
    void SetUp() override
    {
        VIRLOAdStoryboardScreens::start();
        m_folder.emplace();
        m_network = makeFixedNetworkFlags(NetworkFlagReachable);
        NetworkFlagsSource::setShared(m_network.get());
        // As after a host's first start: closing an ad asks the shared controller for its rewards.
        VIRLOAdController::sharedAdController()->trackingManager()->initiateTracking();
        server.emplace(adserver::AdServerOptions{.stateFolder = m_folder->path("server")});
        server->start();
        URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(server->authorityFile().string());
    }

    void TearDown() override
    {
        server.reset();
        settleAll();
        NetworkFlagsSource::setShared(nullptr);
        m_folder.reset();
    }

    std::optional<adserver::AdServer> server;

    [[nodiscard]] std::size_t files() const { return m_folder->files().size(); }

private:
    std::optional<TemporaryFolder> m_folder;
    std::unique_ptr<NetworkFlagsSource> m_network;
};

Surroundings& surroundings()
{
    static auto* const shared =
        static_cast<Surroundings*>(testing::AddGlobalTestEnvironment(new Surroundings));
    return *shared;
}

[[maybe_unused]] const Surroundings& atStart = surroundings();

template <typename T>
T& outletOf(ViewController& screen, const char* name)
{
    return *screen.view().property(name).value<T*>();
}

void laidOver(JSON& object, const JSON& changes)
{
    for (const auto& [key, value] : changes.items()) {
        if (value.is_null())
            object.erase(key);
        else
            object[key] = value;
    }
}

} // namespace

std::string encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes.toStdString();
}

std::string imageFile(const QColor& color, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return encoded(image);
}

ScreenTest::ScreenTest() : api(VIRLOAdServerAPI::initWithBaseURL(*URL::fromString(server().baseURL())))
{
    server().reset();
    for (const char* path : {"/impression/*", "/click/*", "/store/*", "/poll/*"})
        server().setFault({.path = path, .status = 200, .body = "{}"});
}

ScreenTest::~ScreenTest()
{
    settleAll();
}

adserver::AdServer& ScreenTest::server()
{
    return *surroundings().server;
}

int ScreenTest::requests(const std::string& path)
{
    int count = 0;
    for (const auto& request : server().requests())
        count += request.path == path ? 1 : 0;
    return count;
}

bool ScreenTest::awaitRequests(const std::string& path, int count)
{
    return settle([&] { return requests(path) >= count; });
}

void ScreenTest::serve(const std::string& path, const std::string& body)
{
    server().setFault({.path = path, .status = 200, .body = body, .contentType = "image/png"});
}

std::size_t ScreenTest::fileCount()
{
    return surroundings().files();
}

std::string ScreenTest::url(const std::string& path)
{
    return server().baseURL() + path;
}

JSON ScreenTest::ad(const JSON& item, const JSON& button, int secondsToSkip)
{
    static int number = 0;
    m_identifier = "ad-" + std::to_string(++number);
    JSON action = {{"actionType", "CLICK_TO_APPSTORE"},
                   {"text", "Play now"},
                   {"textRed", 255},
                   {"textGreen", 255},
                   {"textBlue", 255},
                   {"backgroundRed", 200},
                   {"backgroundGreen", 60},
                   {"backgroundBlue", 30},
                   {"xPosition", 1300},
                   {"yPosition", 840}};
    laidOver(action, button);
    JSON one = {{"cid", m_identifier},
                {"type", "appstore"},
                {"title", "Ember Trail"},
                {"backgroundUrl", url("/images/" + m_identifier)},
                {"clickUrl", url("/store/" + m_identifier)},
                {"clickTracker", url("/click/" + m_identifier)},
                {"impressionUrl", url("/impression/" + m_identifier)},
                {"actionButton", action}};
    laidOver(one, item);
    return {{"txid", m_identifier}, {"type", "engagement"}, {"secondsToSkip", secondsToSkip}, {"ads", {one}}};
}

std::shared_ptr<VIRLOAdViewController> ScreenTest::readyScreen(const JSON& ad)
{
    std::shared_ptr<VIRLOAdViewController> ready;
    std::atomic<bool> done{false};
    VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
        VIRLOAdvertisement::initWithDictionary(ad), api,
        [&](const std::shared_ptr<VIRLOAdViewController>& screen, const OptionalError& error) {
            EXPECT_FALSE(error);
            ready = screen;
            done = true;
        });
    EXPECT_TRUE(settle([&] { return done.load(); }));
    return ready;
}

ScreenTest::Screen ScreenTest::ready(const JSON& ad)
{
    return std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(readyScreen(ad));
}

ScreenTest::Screen ScreenTest::readyOver(const QColor& color, const JSON& ad)
{
    VIRLOAdFullscreenImageStore::sharedStore()->setImageForItem(
        imageFile(color), *VIRLOAdItem::initWithDictionary(ad["ads"][0]));
    return ready(ad);
}

void ScreenTest::present(const std::shared_ptr<VIRLOAdViewController>& screen,
                         const std::function<bool()>& isThere)
{
    int frames = 0;
    const auto counting = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { ++frames; });
    VIRLOAdPresenter::present(screen, &window);
    EXPECT_TRUE(settle([&] { return frames > 0 && isThere(); }));
    QObject::disconnect(counting);
}

void ScreenTest::present(const Screen& screen)
{
    present(screen, [&] { return focus(screen) != "none" && closeButton(screen).timerIsRunning(); });
    pumpMainLoop();
}

ScreenTest::Screen ScreenTest::shown(const JSON& ad)
{
    const auto screen = readyOver(QColor(70, 90, 130), ad);
    present(screen);
    return screen;
}

void ScreenTest::countDown(int seconds)
{
    for (int second = 0; second <= seconds; ++second) {
        clock.advance(Seconds(1));
        animations.advance(Seconds(1));
    }
    animations.advance(Seconds(1));
}

void ScreenTest::click(Qt::Key key)
{
    window.click(key);
    animations.advance(Seconds(0.3));
}

Button& ScreenTest::actionButton(const Screen& screen)
{
    return outletOf<Button>(*screen, "actionButton");
}

VIRLOTimerButton& ScreenTest::closeButton(const Screen& screen)
{
    return outletOf<VIRLOTimerButton>(*screen, "closeButton");
}

ImageView& ScreenTest::backgroundImage(const Screen& screen)
{
    return outletOf<ImageView>(*screen, "backgroundImage");
}

bool ScreenTest::isSpinning(const Screen& screen)
{
    return outletOf<ActivityIndicatorView>(*screen, "activityIndicator").isAnimating();
}

std::string ScreenTest::focus(const Screen& screen)
{
    const auto views = focusedViews(screen->view());
    if (views.empty())
        return "none";
    if (views.size() > 1)
        return "several";
    if (views.front() == &actionButton(screen))
        return "action";
    if (views.front() == &closeButton(screen))
        return "close";
    return qobject_cast<VIRLOActivityIndicator*>(views.front()) != nullptr ? "busy" : "other";
}

QImage ScreenTest::shoot(const std::string& name)
{
    animations.advance(Seconds(0.5));
    QImage image = window.image();
    if (const char* const folder = std::getenv("VIRLO_SCREENSHOTS")) {
        EXPECT_TRUE(image.save(QString::fromStdString(folder + ("/" + name) + ".png")));
    }
    return image;
}

} // namespace virlo::test
