#include "Clips.h"
#include "RealVideoTest.h"
#include "Settle.h"

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;

class PlayedAds : public RealVideoTest
{
};

TEST_F(PlayedAds, ReportEachMomentOnceAndInOrder)
{
    std::vector<TestVideo> videos;
    Pings expected{"impression", "s1 creativeView"};
    for (const int seconds : {1, 2, 3, 0}) {
        const std::string name = "s" + std::to_string(seconds);
        serveVideo(name, clipBytes({.seconds = std::max(seconds, 1) * 1.0}));
        videos.push_back({name, seconds});
        for (const char* const event : {"start", "firstQuartile", "midpoint", "thirdQuartile", "complete"})
            expected.push_back(name + " " + event);
    }
    recordReports();
    const auto video = shownVideo(videoAd(videos));
    EXPECT_TRUE(closesItself(Seconds(60)));
    EXPECT_EQ(reports(), expected);
}

TEST_F(PlayedAds, ShowFramesRingAndBusyIndicator)
{
    window.resize(1280, 720);
    serveClip("slow", "wildgrove-silent-720p.mp4", {.stallBodyAfter = 240'000, .stallFor = 14s});
    const auto video = shownVideo(videoAd({{"slow", 4}}));
    ASSERT_TRUE(settle([&] { return !isBusy(video) && video->videoPlayer()->currentTime() > Seconds(1.1); }));
    const QImage image = shoot("video-720p");
    EXPECT_GT(image.pixelColor(83, 606).lightness(), 240) << "the ring's top";
    EXPECT_EQ(countOf(video), "3");
    EXPECT_NE(image.pixelColor(640, 360), QColor(Qt::black));
    EXPECT_TRUE(settle([&] { return isBusy(video); }));
    shoot("video-stalled");
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver()) << "a stalled video can be left";
}

} // namespace

} // namespace virlo::test
