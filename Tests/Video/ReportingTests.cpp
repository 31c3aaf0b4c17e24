#include "LogCapture.h"
#include "NotificationCenter.h"
#include "Settle.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOTimerProgress.h"
#include "VIRLOVASTMediaFile.h"
#include "VideoTest.h"

namespace virlo::test
{

namespace
{

/// What a video reports, and when.
class Videos : public FakeVideoTest
{
};

struct QuartileRow {
    int duration; ///< in the document
    int first;
    int middle;
    int third;
};

TEST_F(Videos, ReportQuartilesAtWholeSecondsOneATick)
{
    for (const QuartileRow& row : {QuartileRow{30, 7, 15, 22}, QuartileRow{10, 2, 5, 7},
                                   QuartileRow{3, 0, 1, 2}, QuartileRow{0, 0, 1, 2}}) {
        SCOPED_TRACE(row.duration);
        const std::string name = "d" + std::to_string(row.duration);
        const auto video = made(videoAd({{name, row.duration}}));
        ready(name, 40);
        EXPECT_EQ(pings(), Pings()) << "nothing before it is shown";
        show(video);
        Pings seen = pings();
        for (int second = 0; second <= row.third; ++second) {
            playTo(name, second);
            if (second > 0)
                seen = pings();
            EXPECT_EQ(std::count(seen.begin(), seen.end(), name + " firstQuartile"), second == row.first);
            EXPECT_EQ(std::count(seen.begin(), seen.end(), name + " midpoint"), second == row.middle);
            EXPECT_EQ(std::count(seen.begin(), seen.end(), name + " thirdQuartile"), second == row.third);
        }
        click(Qt::Key_Escape);
        EXPECT_EQ(pings(), (Pings{name + " close"}));
    }
}

TEST_F(Videos, AreReportedInOrderHoweverLateTheMainThreadIs)
{
    const auto video = made(videoAd({{"a", 8}, {"b", 1}, {"c", 0}}));
    ready("a");
    recordReports();
    show(video);
    engine.moveTo(clip("a"), Seconds(7.9));
    for (const char* const name : {"a", "b", "c"}) {
        ready(name, 1);
        engine.end(clip(name));
    }
    settleAll();
    EXPECT_TRUE(isOver());
    EXPECT_THAT(reports(), testing::ElementsAre("impression", "a creativeView", "a start", "a firstQuartile",
                                                "a midpoint", "a thirdQuartile", "a complete", "b start",
                                                "b firstQuartile", "b midpoint", "b thirdQuartile",
                                                "b complete", "c start", "c firstQuartile", "c midpoint",
                                                "c thirdQuartile", "c complete"));
}

TEST_F(Videos, FollowEachOtherEachWithItsOwnReports)
{
    const auto video = playing(videoAd({{"a", 8}, {"b", 4}}), "a");
    playTo("a", 7);
    EXPECT_EQ(pings(), (Pings{"a firstQuartile", "a midpoint", "a thirdQuartile"}));
    ready("b", 4);
    video->videoPlayer()->setMuted(true);
    pumpMainLoop();
    end("a");
    EXPECT_TRUE(engine.at(clip("b")).isMuted);
    EXPECT_EQ(pings(), (Pings{"a complete", "a mute", "b start"}));
    for (const auto& [second, event] :
         {std::pair(1, "b firstQuartile"), std::pair(2, "b midpoint"), std::pair(3, "b thirdQuartile")}) {
        playTo("b", second);
        EXPECT_EQ(pings(), (Pings{event}));
    }
    EXPECT_FALSE(isOver());
    end("b");
    EXPECT_EQ(pings(), (Pings{"b complete"}));
    EXPECT_TRUE(isOver());
}

TEST_F(Videos, ThatFailLeaveAsCompleteAndTheLastClosesTheScreen)
{
    const auto video = playing(videoAd({{"a"}, {"b"}}), "a");
    expectLog("Video failed: Error Domain=com.virlohq.error.media Code=2");
    end("a", PlaybackFacts::Phase::Failed);
    EXPECT_EQ(pings(), (Pings{"a complete", "b start"}));
    EXPECT_TRUE(isBusy(video)) << "the next one has not come yet";
    end("b", PlaybackFacts::Phase::Failed);
    EXPECT_EQ(pings(), (Pings{"b complete"}));
    EXPECT_TRUE(isOver());
}

TEST_F(Videos, AreMutedByTheRemoteAndSayEachChangeOnce)
{
    const auto video = playing(videoAd({{"a"}}), "a");
    click(Qt::Key_VolumeMute);
    EXPECT_TRUE(engine.at(clip("a")).isMuted);
    EXPECT_EQ(pings(), (Pings{"a mute"}));
    video->videoPlayer()->setMuted(true);
    EXPECT_EQ(pings(), Pings());
    click(Qt::Key_VolumeMute);
    EXPECT_FALSE(engine.at(clip("a")).isMuted);
    EXPECT_EQ(pings(), (Pings{"a unmute"}));
    video->videoPlayer()->setMuted(true);
    video->videoPlayer()->setMuted(false);
    EXPECT_EQ(pings(), (Pings{"a mute", "a unmute"})) << "twice in one turn of the main loop";
}

TEST_F(Videos, PauseAndResumeByTheRemoteAndWithTheHost)
{
    const auto video = playing(videoAd({{"a"}}), "a");
    const auto post = [](const char* name) {
        NotificationCenter::defaultCenter().post(name);
        pumpMainLoop();
    };
    post(ApplicationDidBecomeActiveNotification);
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_FALSE(engine.at(clip("a")).isPlaying);
    EXPECT_FALSE(isBusy(video));
    EXPECT_EQ(pings(), (Pings{"a pause"}));
    // Paused by the viewer, it stays paused when the host comes back.
    post(ApplicationDidEnterBackgroundNotification);
    post(ApplicationDidBecomeActiveNotification);
    EXPECT_EQ(pings(), Pings());
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a resume"}));
    post(ApplicationDidEnterBackgroundNotification);
    EXPECT_FALSE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a pause"}));
    post(ApplicationDidBecomeActiveNotification);
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a resume"}));
}

TEST_F(Videos, ThatWaitShowTheBusyIndicatorUntilTheyCanContinue)
{
    const auto video = made(videoAd({{"a"}}));
    show(video);
    EXPECT_TRUE(isBusy(video)) << "no first frame yet";
    ready("a");
    EXPECT_FALSE(isBusy(video));
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    engine.set(clip("a"), {.phase = PlaybackFacts::Phase::Ready, .duration = Seconds(8)});
    pumpMainLoop();
    EXPECT_TRUE(isBusy(video));
    ready("a");
    EXPECT_FALSE(isBusy(video));
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a creativeView", "a start", "impression"})) << "a stall is nobody's pause";
}

TEST_F(Videos, PausedByTheHostAlonePlayOn)
{
    const auto video = playing(videoAd({{"a"}}), "a");
    video->videoPlayer()->pause();
    settleAll();
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), Pings());
}

TEST_F(Videos, AreCountedDownAndTheNextOneGivesItsPredecessorsSecondsBack)
{
    const auto video = made(videoAd({{"a", 8}, {"b", 4}}));
    EXPECT_EQ(countOf(video), "12");
    ready("a");
    show(video);
    playTo("a", 3);
    EXPECT_EQ(countOf(video), "9");
    playTo("a", 7);
    EXPECT_EQ(countOf(video), "5");
    ready("b", 4);
    end("a");
    playTo("b", 1);
    EXPECT_EQ(countOf(video), "11");
}

TEST_F(Videos, LongerThanTheirDocumentSaysStayAtZero)
{
    const auto video = playing(videoAd({{"a", 3}}), "a", 8);
    playTo("a", 5);
    EXPECT_EQ(countOf(video), "0");
    EXPECT_FALSE(isOver());
}

TEST_F(Videos, ThatCannotBePlayedShiftTheReportsOfThoseAfter)
{
    const auto video =
        playing(videoAd({{"a", 8, mediaFile("file:///a.mp4", 1280, 720)}, {"b", 8}, {"c", 8}}), "b");
    EXPECT_EQ(countOf(video), "16");
    EXPECT_EQ(video->creativeForPlayerItem(nullptr), nullptr);
    EXPECT_EQ(video->creativeForPlayerItem(PlayerItem::playerItemWithURL(*URL::fromString(clip("b")))),
              nullptr);
    playTo("b", 2);
    EXPECT_EQ(pings(), (Pings{"a firstQuartile"}));
    end("b");
    EXPECT_EQ(pings(), (Pings{"a complete", "b start"}));
}

TEST_F(Videos, AreTakenInTheScreensWidthElseWithTheMostPixels)
{
    struct Row {
        std::vector<std::pair<int, int>> sizes;
        std::string chosen;
    };

    const auto chosen = [](const std::vector<std::pair<int, int>>& sizes) {
        VIRLOVASTCreative::MediaFiles files;
        for (const auto& [width, height] : sizes) {
            files.push_back(VIRLOVASTMediaFile::initWithURLAndProperties(
                URL::fromString("https://a/" + std::to_string(files.size())),
                {{"width", std::to_string(width)}, {"height", std::to_string(height)}}));
        }
        const auto file = VIRLOAdVideoViewController::bestMEdiaFileForCurrentViewFromCollection(files);
        return file ? file->url()->absoluteString().substr(10) : "none";
    };
    for (const Row& row : {Row{{{3840, 2160}, {1920, 800}, {1920, 1080}}, "1"},
                           Row{{{640, 480}, {1280, 720}, {720, 1280}}, "1"}, Row{{{0, 0}, {1280, 0}}, "none"},
                           Row{{{0, 0}, {2, 1}}, "1"}, Row{{}, "none"}})
        EXPECT_EQ(chosen(row.sizes), row.chosen);
}

TEST_F(Videos, EarnTheirRewardEachTimeOneIsComplete)
{
    const auto ad = videoAd({{"a"}, {"b"}}, {{"pollingUrl", url("/poll/video")}});
    const std::string click = "/click/" + identifier();
    const auto video = playing(ad, "a");
    const auto isOwed = [this] {
        const auto items = VIRLOAppRequestStore::sharedStore()->items();
        return std::find(items.begin(), items.end(), *URL::fromString(url("/poll/video"))) != items.end();
    };
    EXPECT_FALSE(isOwed());
    end("a");
    EXPECT_TRUE(awaitRequests(click));
    EXPECT_TRUE(settle(isOwed));
    end("b");
    EXPECT_TRUE(awaitRequests(click, 2));
    VIRLOAppRequestStore::sharedStore()->removeItem(*URL::fromString(url("/poll/video")));
}

TEST_F(Videos, GiveTheirDownloadSpeedToTheQualityMonitor)
{
    const auto video = playing(videoAd({{"a"}}), "a");
    const auto monitor = VIRLOConnectionQualityMonitor::sharedMonitor();
    const std::size_t before = monitor->measurementsDownload().size();
    engine.log(clip("a"), {.numberOfBytesTransferred = 0, .observedBitrate = 8000});
    engine.log(clip("a"), {.numberOfBytesTransferred = 500'000, .observedBitrate = 0});
    pumpMainLoop();
    EXPECT_EQ(monitor->measurementsDownload().size(), before);
    engine.log(clip("a"), {.numberOfBytesTransferred = 250'000, .observedBitrate = 2'000'000});
    engine.log(clip("a"), {.numberOfBytesTransferred = 500'000, .observedBitrate = 2'000'000});
    pumpMainLoop();
    ASSERT_EQ(monitor->measurementsDownload().size(), before + 2) << "each has a notification of its own";
    EXPECT_EQ(monitor->measurementsDownload()[before]->bitsTransmitted(), 2'000'000U);
    EXPECT_EQ(monitor->measurementsDownload().back()->bitsTransmitted(), 4'000'000U);
    EXPECT_DOUBLE_EQ(monitor->measurementsDownload().back()->timeInterval(), 2.0);
}

} // namespace

} // namespace virlo::test
