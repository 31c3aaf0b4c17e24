#include "LogCapture.h"
#include "PlayerItem.h"
#include "QueuePlayer.h"
#include "RealVideoTest.h"
#include "Settle.h"

#include <array>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;

class PlayedAds : public RealVideoTest
{
protected:
    /// The film's own time, as its player tells it.
    [[nodiscard]] bool reaches(const Video& video, double seconds)
    {
        return settle([&] {
            const auto player = video->videoPlayer();
            return !player || player->currentTime().count() >= seconds;
        });
    }
};

/// Eight bars from white to black, each 191 where it is lit.
void expectBars(const QImage& picture, const QRect& area)
{
    constexpr std::array<std::array<int, 3>, 8> bars{{{191, 191, 191},
                                                      {191, 191, 0},
                                                      {0, 191, 191},
                                                      {0, 191, 0},
                                                      {191, 0, 191},
                                                      {191, 0, 0},
                                                      {0, 0, 191},
                                                      {0, 0, 0}}};
    for (std::size_t bar = 0; bar < bars.size(); ++bar) {
        const int x = area.left() + (2 * static_cast<int>(bar) + 1) * area.width() / 16;
        const QColor color = picture.pixelColor(x, area.center().y());
        EXPECT_NEAR(color.red(), bars.at(bar)[0], 6) << "bar " << bar;
        EXPECT_NEAR(color.green(), bars.at(bar)[1], 6) << "bar " << bar;
        EXPECT_NEAR(color.blue(), bars.at(bar)[2], 6) << "bar " << bar;
    }
}

TEST_F(PlayedAds, ShowTheirPictureInItsShapeAndReportEachMomentOnce)
{
    serveClip("wide", "bars-bt709-720p.mp4");
    serveClip("square", "bars-bt601-480p.mp4");
    const auto video = shownVideo(videoAd({{"wide", 4}, {"square", 4}}));
    ASSERT_TRUE(reaches(video, 1.5));
    expectBars(shoot("video-bars-720p"), QRect(0, 0, 1920, 1080));
    ASSERT_TRUE(settle([&] { return video->videoPlayer()->items()->size() == 1; }));
    ASSERT_TRUE(reaches(video, 1.5));
    const QImage picture = shoot("video-bars-480p");
    expectBars(picture, QRect(240, 0, 1440, 1080));
    EXPECT_EQ(picture.pixelColor(120, 540), QColor(Qt::black)) << "beside it";
    EXPECT_TRUE(closesItself());
    EXPECT_EQ(pings(), (Pings{"impression", "square complete", "square firstQuartile", "square midpoint",
                              "square start", "square thirdQuartile", "wide complete", "wide creativeView",
                              "wide firstQuartile", "wide midpoint", "wide start", "wide thirdQuartile"}));
}

TEST_F(PlayedAds, FillASmallerScreenWithTheirRingInItsCorner)
{
    window.resize(1280, 720);
    serveClip("wide", "bars-bt709-720p.mp4");
    const auto video = shownVideo(videoAd({{"wide", 4}}));
    ASSERT_TRUE(reaches(video, 1.5));
    const QImage picture = shoot("video-720p");
    expectBars(picture, QRect(0, 0, 1280, 720));
    EXPECT_GT(picture.pixelColor(83, 606).lightness(), 240) << "the ring's top";
}

TEST_F(PlayedAds, ThatStallShowTheWheelSoonAndGoOnByThemselves)
{
    serveClip("slow", "wildgrove-silent-720p.mp4", {.stallBodyAfter = 240'000, .stallFor = 4500ms});
    const auto video = shownVideo(videoAd({{"slow", 4}}));
    ASSERT_TRUE(settle([&] { return video->videoPlayer() && video->videoPlayer()->currentTime() > 0s; }));
    ASSERT_TRUE(settle([&] { return !isBusy(video); }));
    Seconds still{0};
    Seconds last{0};
    auto since = std::chrono::steady_clock::now();
    ASSERT_TRUE(settle([&] {
        if (!video->videoPlayer())
            return false; // it has ended without a stall
        const Seconds now = video->videoPlayer()->currentTime();
        if (now != std::exchange(last, now))
            since = std::chrono::steady_clock::now();
        still = std::chrono::steady_clock::now() - since;
        return isBusy(video);
    }));
    EXPECT_LT(still, Seconds(0.5));
    shoot("video-stalled");
    EXPECT_TRUE(settle([&] { return !isBusy(video); }));
    EXPECT_TRUE(closesItself());
    EXPECT_EQ(pings(), (Pings{"impression", "slow complete", "slow creativeView", "slow firstQuartile",
                              "slow midpoint", "slow start", "slow thirdQuartile"}));
}

TEST_F(PlayedAds, ThatAreNoFilmsGiveWayToTheNext)
{
    server().setFault({.path = "/clip/missing", .status = 404, .body = ""});
    server().setFault({.path = "/clip/text", .status = 200, .body = "no film", .contentType = "video/mp4"});
    expectLog("Video failed: Error Domain=com.virlohq.error.media Code=2");
    expectLog("Video failed: Error Domain=com.virlohq.error.media Code=3");
    const auto video = shownVideo(videoAd({{"missing"}, {"text"}}));
    EXPECT_TRUE(closesItself());
    EXPECT_EQ(pings(), (Pings{"impression", "missing complete", "missing creativeView", "missing start",
                              "text complete", "text start"}));
}

TEST_F(PlayedAds, ThatStopComingForGoodCanBeLeft)
{
    serveClip("dead", "wildgrove-silent-720p.mp4", {.stallBodyAfter = 240'000, .stallFor = 14s});
    const auto video = shownVideo(videoAd({{"dead", 4}}));
    EXPECT_TRUE(settle([&] { return isBusy(video) && video->videoPlayer()->currentTime() > 0s; }));
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
}

TEST_F(PlayedAds, CountDownOverAnyPicture)
{
    serveClip("film", "helion-720p.mp4");
    const auto video = shownVideo(videoAd({{"film", 8}}));
    ASSERT_TRUE(reaches(video, 2.2));
    shoot("video-playing");
    EXPECT_EQ(countOf(video), "6");
}

} // namespace

} // namespace virlo::test
