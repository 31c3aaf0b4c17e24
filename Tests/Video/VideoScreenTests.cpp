#include "Button.h"
#include "LogCapture.h"
#include "Settle.h"
#include "TapRecognizer.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOTimerButton.h"
#include "VideoTest.h"

namespace virlo::test
{

namespace
{

/// How a video screen begins and ends, alone and over a picture.
class VideoScreens : public FakeVideoTest
{
protected:
    /// A picture with a film over it, shown, its film playing.
    [[nodiscard]] Screen shownPicture()
    {
        const auto made = make(pictureAd({{"a"}}));
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
    const auto stalled = PlaybackFacts{.phase = PlaybackFacts::Phase::Ready, .duration = Seconds(8)};
    const std::vector<std::pair<const char*, std::function<void()>>> moments{
        {"loading", [] {}},
        {"playing", [this] { ready("a"); }},
        {"stalled",
         [&, this] {
             ready("a");
             engine.set(clip("a"), stalled);
             pumpMainLoop();
         }},
        {"paused", [this] {
             ready("a");
             click(Qt::Key_MediaPause);
             static_cast<void>(pings());
         }}};
    for (const auto& [name, reach] : moments) {
        SCOPED_TRACE(name);
        engine.set(clip("a"), {});
        const auto video = shownVideo(videoAd({{"a"}}));
        static_cast<void>(pings());
        reach();
        click(Qt::Key_Escape);
        EXPECT_TRUE(isOver());
        EXPECT_EQ(pings(), (Pings{"a close"}));
        EXPECT_EQ(video->videoPlayer(), nullptr);
        EXPECT_FALSE(engine.at(clip("a")).isLoaded);
    }
}

TEST_F(VideoScreens, DieWithTheirFilmAndLeaveNothingBehind)
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
    EXPECT_EQ(pings(), (Pings{"a creativeView", "a start", "impression"}));
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

TEST_F(VideoScreens, WithNothingToPlayAreAskedEachSecondForEver)
{
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    allowLog(testing::A<std::string>());
    const auto polls = [] {
        const auto lines = settledLogLines();
        return std::count(lines.begin(), lines.end(), "Preloading video...");
    };
    for (const JSON& ad : {videoAd({{"a", 8, mediaFile("file:///a.mp4", 1920, 1080)}}),
                           videoAd({}, {{"markupUrl", nullptr}})}) {
        const auto before = polls();
        EXPECT_FALSE(make(ad, Seconds(0.3)));
        EXPECT_EQ(polls() - before, 1);
        for (int second = 1; second <= 3; ++second) {
            clock.advance(Seconds(1));
            EXPECT_EQ(polls() - before, second + 1 + (before > 0 ? second : 0));
        }
    }
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

TEST_F(VideoScreens, OverAPictureCoverItUntilTheFilmHasEnded)
{
    const auto screen = shownPicture();
    const auto video = videoOf(screen);
    ASSERT_TRUE(video);
    EXPECT_EQ(screen->view().subviews().back(), &video->view());
    EXPECT_EQ(video->view().frame(), QRectF(0, 0, 1920, 1080));
    EXPECT_FALSE(video->menuButtonRecognizer()) << "Menu is the picture's";
    EXPECT_EQ(pings(), (Pings{"a creativeView", "a start", "impression"}));
    countDown(1);
    EXPECT_EQ(focus(screen), "none") << "what is covered cannot be chosen";
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

TEST_F(VideoScreens, OverAPictureAreLeftByMenuFirst)
{
    const auto screen = shownPicture();
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

TEST_F(VideoScreens, OverAPictureStayAwayWhereTheirDocumentCannotBeRead)
{
    const JSON ad = pictureAd({{"a"}});
    server().setFault({.path = "/vast/*", .status = 500});
    const auto made = make(ad);
    ASSERT_TRUE(made && !made->error);
    const auto screen = std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(made->screen);
    show(screen);
    EXPECT_TRUE(screen->childViewControllers().empty());
    EXPECT_EQ(focus(screen), "action");
}

/// Something that lies over an ad with a video.
class Covered : public VIRLOAdViewControllerBase
{
public:
    using VIRLOAdViewControllerBase::pauseVideos;
    using VIRLOAdViewControllerBase::resumeVideos;
};

TEST_F(VideoScreens, RestWhileSomethingLiesOverTheirAd)
{
    const auto video = made(videoAd({{"a"}}));
    ready("a");
    const auto screen = virlo::ViewController::make<Covered>();
    screen->addChildViewController(video);
    screen->view().addSubview(video->view());
    show(screen);
    static_cast<void>(pings());
    screen->pauseVideos();
    pumpMainLoop();
    EXPECT_FALSE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a pause"}));
    screen->resumeVideos();
    pumpMainLoop();
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a resume"}));
    VIRLOAdPresenter::dismiss(screen); // Menu would end the video, which nobody waits for here
}

} // namespace

} // namespace virlo::test
