#include "Button.h"
#include "LogCapture.h"
#include "Settle.h"
#include "TapRecognizer.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOTimerButton.h"
#include "VideoTest.h"

namespace virlo::test
{

namespace
{

/// How a video screen begins and ends, alone and over an image ad.
class VideoScreens : public FakeVideoTest
{
protected:
    /// An image ad with a video over it, shown, the video playing.
    [[nodiscard]] Screen shownImage()
    {
        const auto made = make(imageAd({{"a"}}));
        EXPECT_TRUE(made && !made->error);
        auto screen = std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(made->screen);
        ready("a");
        show(screen);
        return screen;
    }

    [[nodiscard]] static Video videoOf(const Screen& screen)
    {
        return screen->childViewControllers().empty() ? nullptr
                                                      : std::dynamic_pointer_cast<VIRLOAdVideoViewController>(
                                                            screen->childViewControllers().front());
    }
};

TEST_F(VideoScreens, AreLeftByMenuAtAnyMoment)
{
    for (const char* const name : {"loading", "stalled"}) {
        SCOPED_TRACE(name);
        engine.set(clip("a"), {});
        const auto video = shownVideo(videoAd({{"a"}}));
        static_cast<void>(pings());
        if (name == std::string("stalled")) {
            ready("a");
            engine.set(clip("a"), {.phase = PlaybackFacts::Phase::Ready, .duration = Seconds(8)});
            pumpMainLoop();
        }
        click(Qt::Key_Escape);
        EXPECT_TRUE(isOver());
        EXPECT_EQ(pings(), (Pings{"a close"}));
        EXPECT_EQ(video->videoPlayer(), nullptr);
        EXPECT_FALSE(engine.at(clip("a")).isLoaded);
    }
}

TEST_F(VideoScreens, AreDestroyedWithTheirVideoAndLeaveNothingBehind)
{
    for (const bool isShown : {false, true}) {
        auto video = playing(videoAd({{"a"}}), "a");
        if (!isShown) {
            click(Qt::Key_Escape);
            video = made(videoAd({{"a"}}));
        }
        const std::weak_ptr<VIRLOAdVideoViewController> watched = video;
        if (isShown)
            VIRLOAdPresenter::dismiss(video);
        video.reset();
        EXPECT_TRUE(settle([&] { return watched.expired(); }));
        settleAll();
        EXPECT_FALSE(engine.at(clip("a")).isLoaded);
        clock.advance(Seconds(31));
        EXPECT_EQ(clock.pendingCount(), 0U);
    }
}

TEST_F(VideoScreens, ShownAgainHaveNoPlayerAndCanStillBeLeft)
{
    const auto video = playing(videoAd({{"a"}}), "a");
    click(Qt::Key_Escape);
    static_cast<void>(pings());
    show(video);
    EXPECT_TRUE(isBusy(video));
    EXPECT_EQ(pings(), (Pings{"impression"})) << "nothing of a video that is not there";
    for (const Qt::Key key : {Qt::Key_VolumeMute, Qt::Key_MediaPlay, Qt::Key_Return, Qt::Key_Left})
        click(key);
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
    EXPECT_EQ(pings(), Pings());
}

TEST_F(VideoScreens, WithoutAnItemOrADocumentAnswerWithTheError)
{
    JSON empty = videoAd({{"a"}});
    empty["ads"] = JSON::array();
    const auto none = make(empty);
    ASSERT_TRUE(none && none->error && !none->screen);
    EXPECT_EQ(none->error, (Error{"The ad does not contain any item."}));

    const auto missing = make(videoAd({{"a"}}, {{"markupUrl", url("/vast/nowhere")}}));
    ASSERT_TRUE(missing && missing->error && !missing->screen);
    EXPECT_EQ(missing->error->code, 404);
}

TEST_F(VideoScreens, WithNothingToPlayPollEachSecondUntilNobodyHoldsThem)
{
    recordReports();
    const auto polls = [] {
        const auto lines = settledLogLines();
        return std::count(lines.begin(), lines.end(), "Preloading video...");
    };
    for (const JSON& ad : {videoAd({{"a", 8, mediaFile("file:///a.mp4", 1920, 1080)}}),
                           videoAd({}, {{"markupUrl", nullptr}})}) {
        const auto before = polls();
        const auto abandon = VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
            VIRLOAdvertisement::initWithDictionary(ad), api,
            [](const auto&, const auto&) { ADD_FAILURE() << "there is nothing to show"; });
        ASSERT_TRUE(settle([&] { return polls() == before + 1; }));
        for (int second = 1; second <= 3; ++second) {
            clock.advance(Seconds(1));
            settleAll();
            EXPECT_EQ(polls(), before + second + 1);
        }
        EXPECT_TRUE(abandon());
        clock.advance(Seconds(60));
        settleAll();
        EXPECT_EQ(polls(), before + 4);
        EXPECT_EQ(clock.pendingCount(), 0U);
    }
}

TEST_F(VideoScreens, OverAnImageHideItUntilTheVideoHasEnded)
{
    const auto screen = shownImage();
    const auto video = videoOf(screen);
    ASSERT_TRUE(video);
    EXPECT_EQ(screen->view().subviews().back(), &video->view());
    EXPECT_EQ(video->view().frame(), QRectF(0, 0, 1920, 1080));
    EXPECT_FALSE(video->menuButtonRecognizer()) << "Menu belongs to the image ad";
    EXPECT_EQ(pings(), (Pings{"a creativeView", "a start", "impression"}));
    countDown(1);
    EXPECT_EQ(focus(screen), "none") << "what is covered takes no focus";
    click(Qt::Key_Return);
    end("a");
    EXPECT_EQ(pings(), (Pings{"a complete"}));
    EXPECT_TRUE(screen->childViewControllers().empty());
    EXPECT_FALSE(isOver());
    EXPECT_EQ(focus(screen), "action");
    EXPECT_EQ(requests("/click/" + identifier()), 0);
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
}

TEST_F(VideoScreens, OverAnImageAreLeftByMenuFirst)
{
    const auto screen = shownImage();
    static_cast<void>(pings());
    click(Qt::Key_VolumeMute);
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_EQ(pings(), (Pings{"a mute", "a pause"}));
    click(Qt::Key_MediaTogglePlayPause);
    static_cast<void>(pings());
    click(Qt::Key_Escape);
    EXPECT_EQ(pings(), (Pings{"a close"}));
    EXPECT_FALSE(isOver());
    EXPECT_TRUE(screen->childViewControllers().empty());
    EXPECT_EQ(focus(screen), "action");
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
}

TEST_F(VideoScreens, OverAnImageLeavePlayPauseToAnOverlayAboveThem)
{
    const auto screen = shownImage();
    static_cast<void>(pings());
    const auto overlay = View::make<VIRLOActivityIndicator>();
    overlay->shownInView(screen->view());
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_EQ(pings(), Pings());
    overlay->dismiss();
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_EQ(pings(), (Pings{"a pause"}));
}

TEST_F(VideoScreens, OverAnImageAreLeftOutWhereTheirDocumentCannotBeRead)
{
    const JSON ad = imageAd({{"a"}});
    server().setFault({.path = "/vast/*", .status = 500});
    const auto made = make(ad);
    ASSERT_TRUE(made && !made->error);
    const auto screen = std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(made->screen);
    show(screen);
    EXPECT_TRUE(screen->childViewControllers().empty());
    EXPECT_EQ(focus(screen), "action");
}

} // namespace

} // namespace virlo::test
