#include "VideoTest.h"

#include "Label.h"
#include "LogCapture.h"
#include "Settle.h"
#include "URLSession.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOTimerProgress.h"

#include <algorithm>
#include <mutex>

namespace virlo::test
{

namespace
{

std::string tracking(const std::string& name, const std::string& base)
{
    std::string text;
    for (const char* const event : {"creativeView", "start", "firstQuartile", "midpoint", "thirdQuartile",
                                    "complete", "pause", "resume", "mute", "unmute", "close"})
        text += "<Tracking event=\"" + std::string(event) + "\"><![CDATA[" + base + "/ping/" + name + "/" +
                event + "]]></Tracking>";
    return text;
}

std::string durationText(int seconds)
{
    const auto two = [](int value) { return (value < 10 ? "0" : "") + std::to_string(value); };
    return two(seconds / 3600) + ":" + two(seconds / 60 % 60) + ":" + two(seconds % 60);
}

} // namespace

VideoTest::VideoTest()
{
    server().setFault({.path = "/ping/*", .status = 200, .body = ""});
}

VideoTest::~VideoTest()
{
    for (int presses = 0; presses < 2 && !isOver(); ++presses)
        click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
    static_cast<void>(pings());
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

std::string VideoTest::mediaFile(const std::string& address, int width, int height)
{
    return "<MediaFile width=\"" + std::to_string(width) + "\" height=\"" + std::to_string(height) +
           "\" type=\"video/mp4\"><![CDATA[" + address + "]]></MediaFile>";
}

std::string VideoTest::document(const std::vector<TestVideo>& videos)
{
    std::string text = "<VAST version=\"3.0\"><Ad id=\"reel\"><InLine><Impression><![CDATA[" +
                       url("/ping/impression") + "]]></Impression><Creatives>";
    for (const TestVideo& video : videos) {
        text += "<Creative AdID=\"" + video.name + "\"><Linear><Duration>" + durationText(video.seconds) +
                "</Duration><TrackingEvents>" + tracking(video.name, server().baseURL()) +
                "</TrackingEvents><MediaFiles>" +
                (video.mediaFiles.empty() ? mediaFile(clip(video.name), 1280, 720) : video.mediaFiles) +
                "</MediaFiles></Linear></Creative>";
    }
    return text + "</Creatives></InLine></Ad></VAST>";
}

void VideoTest::serveDocument(const std::vector<TestVideo>& videos)
{
    server().setFault({.path = "/vast/" + identifier(),
                       .status = 200,
                       .body = document(videos),
                       .contentType = "text/xml"});
}

JSON VideoTest::videoAd(const std::vector<TestVideo>& videos, const JSON& item)
{
    JSON result = ad(item);
    result["type"] = "video";
    if (!result["ads"][0].contains("markupUrl"))
        result["ads"][0]["markupUrl"] = url("/vast/" + identifier());
    serveDocument(videos);
    return result;
}

JSON VideoTest::imageAd(const std::vector<TestVideo>& videos)
{
    JSON result = ad({}, {}, 1);
    result["ads"][0]["markupUrl"] = url("/vast/" + identifier());
    serveDocument(videos);
    VIRLOAdFullscreenImageStore::sharedStore()->setImageForItem(
        imageFile(Qt::darkGreen), *VIRLOAdItem::initWithDictionary(result["ads"][0]));
    return result;
}

std::optional<VideoTest::Made> VideoTest::make(const JSON& ad, Seconds limit)
{
    struct State {
        std::mutex mutex;
        std::optional<Made> made;
    };

    const auto state = std::make_shared<State>();
    VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
        VIRLOAdvertisement::initWithDictionary(ad), api, [state](const auto& screen, const auto& error) {
            const std::lock_guard lock(state->mutex);
            EXPECT_FALSE(state->made) << "the completion comes twice";
            state->made = Made{screen, error};
        });
    std::optional<Made> result;
    static_cast<void>(settle(
        [&] {
            const std::lock_guard lock(state->mutex);
            result = state->made;
            return result.has_value();
        },
        limit));
    return result;
}

VideoTest::Video VideoTest::made(const JSON& ad)
{
    const auto result = make(ad);
    EXPECT_TRUE(result && !result->error);
    return result ? std::dynamic_pointer_cast<VIRLOAdVideoViewController>(result->screen) : nullptr;
}

void VideoTest::show(const std::shared_ptr<VIRLOAdViewController>& screen)
{
    int frames = 0;
    const auto counting = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { ++frames; });
    VIRLOAdPresenter::present(screen, &window);
    EXPECT_TRUE(settle([&] { return frames > 0; }));
    QObject::disconnect(counting);
    pumpMainLoop();
}

VideoTest::Video VideoTest::shownVideo(const JSON& ad)
{
    auto video = made(ad);
    show(video);
    return video;
}

VideoTest::Pings VideoTest::pings()
{
    settleAll();
    EXPECT_TRUE(URLSession::drain(Seconds(10)));
    settleAll();
    Pings result;
    for (const auto& request : server().requests()) {
        constexpr std::string_view root = "/ping/";
        if (!request.path.starts_with(root))
            continue;
        std::string ping = request.path.substr(root.size());
        std::replace(ping.begin(), ping.end(), '/', ' ');
        result.push_back(std::move(ping));
    }
    server().clearRequests();
    std::sort(result.begin(), result.end());
    return result;
}

void VideoTest::recordReports()
{
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    allowLog(testing::A<std::string>());
}

VideoTest::Pings VideoTest::reports()
{
    Pings result;
    for (const std::string& line : settledLogLines()) {
        const std::string prefix = "Reporting at URL: " + url("/ping/");
        if (!line.starts_with(prefix))
            continue;
        result.push_back(line.substr(prefix.size()));
        std::replace(result.back().begin(), result.back().end(), '/', ' ');
    }
    return result;
}

bool VideoTest::isBusy(const Video& video)
{
    return video->activityIndicator().superview() != nullptr;
}

std::string VideoTest::countOf(const Video& video)
{
    return video->videoProgress().timerValueLabel().text().toStdString();
}

void FakeVideoTest::ready(const std::string& name, int seconds)
{
    engine.ready(clip(name), Seconds(seconds));
    pumpMainLoop();
}

void FakeVideoTest::playTo(const std::string& name, int second)
{
    for (int now = static_cast<int>(engine.at(clip(name)).time.count()) + 1; now <= second; ++now) {
        engine.moveTo(clip(name), Seconds(now));
        settleAll();
    }
}

void FakeVideoTest::end(const std::string& name, PlaybackFacts::Phase phase)
{
    PlaybackFacts facts{.phase = phase, .duration = engine.at(clip(name)).facts.duration};
    if (phase == PlaybackFacts::Phase::Failed)
        facts.error = Error{MediaEngine::errorDomain, MediaEngine::unreachable};
    engine.set(clip(name), facts);
    settleAll();
}

VideoTest::Video FakeVideoTest::playing(const JSON& ad, const std::string& name, int seconds)
{
    auto video = made(ad);
    ready(name, seconds);
    show(video);
    static_cast<void>(pings());
    return video;
}

} // namespace virlo::test
