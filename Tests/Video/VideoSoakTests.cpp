#include "Footprint.h"
#include "GstMediaEngine.h"
#include "RealVideoTest.h"
#include "Settle.h"
#include "VIRLOAdPresenter.h"

#include <algorithm>
#include <random>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;

/// Videos shown and left again and again.
class ManyVideos : public RealVideoTest
{
protected:
    ManyVideos()
    {
        serveClip("video", "helion-720p.mp4");
        serveClip("silent", "wildgrove-silent-720p.mp4");
        serveClip("slow", "wildgrove-silent-720p.mp4", {.bytesPerSecond = 60'000});
        server().setFault({.path = "/clip/hung", .neverResponds = true});
        server().setFault({.path = "/clip/late", .delay = 200ms, .status = 404, .body = ""});
    }

    [[nodiscard]] static std::vector<TestVideo> videos(unsigned round)
    {
        switch (round % 5) {
        case 0:
            return {{"video"}, {"silent", 4}};
        case 1:
            return {{"silent", 4}};
        case 2:
            return {{"slow", 4}, {"video"}};
        case 3:
            return {{"hung"}};
        default:
            return {{"late"}, {"late"}, {"video"}};
        }
    }

    [[nodiscard]] Footprint footprint()
    {
        settleAll();
        EXPECT_TRUE(GstMediaEngine::drain(Seconds(20)));
        static_cast<void>(window.image());
        clock.advance(Seconds(31));
        settleAll();
        // Threads of GStreamer's own that have nothing to do leave a little later.
        static_cast<void>(settle([] { return false; }, Seconds(0.3)));
        return Footprint::now();
    }
};

TEST_F(ManyVideos, AreLeftAtAnyMomentWithoutAnybodyWaiting)
{
    allowLog("Video failed");
    const unsigned rounds = soaks() ? 500 : 12;
    std::mt19937 random(1895);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    Seconds longest{0};
    for (unsigned round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        const bool overImage = upTo(3) == 0;
        const auto ad = overImage ? imageAd(videos(round)) : videoAd(videos(round));
        auto result = make(ad);
        ASSERT_TRUE(result && result->screen);
        if (upTo(9) != 0) // else it goes without having been seen
            VIRLOAdPresenter::present(result->screen, &window);
        result.reset();
        const int most = upTo(3) == 0 ? 1500 : 120;
        static_cast<void>(settle([] { return false; }, std::chrono::milliseconds(upTo(most))));
        if (upTo(4) == 0)
            window.click(Qt::Key_VolumeMute);
        if (upTo(4) == 0)
            window.click(Qt::Key_MediaTogglePlayPause);
        const auto before = std::chrono::steady_clock::now();
        window.click(Qt::Key_Escape);
        longest = std::max<Seconds>(longest, std::chrono::steady_clock::now() - before);
        for (int presses = 0; presses < 2 && !isOver(); ++presses)
            click(Qt::Key_Escape);
        ASSERT_TRUE(isOver());
    }
    RecordProperty("longest_close_us", static_cast<int>(longest.count() * 1e6));
    EXPECT_LT(longest, Seconds(0.25));
}

TEST_F(ManyVideos, LeaveNothingBehind)
{
    const int rounds = soaks() ? 200 : 10;
    const auto showAndLeave = [this] {
        const auto video = shownVideo(videoAd({{"silent", 4}}));
        EXPECT_TRUE(settle([&] { return video->videoPlayer()->currentTime() > Seconds(0.1); }));
        click(Qt::Key_Escape);
        EXPECT_TRUE(isOver());
    };
    for (int i = 0; i < 5; ++i)
        showAndLeave();
    // A single sample says little: the lowest of several tells whether something is kept.
    std::vector<long> samples;
    const Footprint before = footprint();
    Footprint after;
    for (int sample = 0; sample < 10; ++sample) {
        for (int i = 0; i < rounds / 10; ++i)
            showAndLeave();
        after = footprint();
        server().clearRequests();
        samples.push_back(after.kibibytes);
    }
    const auto middle = samples.begin() + 5;
    const long growth = *std::min_element(middle, samples.end()) - *std::min_element(samples.begin(), middle);
    RecordProperty("pss_growth_kib", static_cast<int>(growth));
    if (Footprint::memoryTells) {
        // Half of the rounds lie between. A video that stays holds over 5 MiB; the heaps of decoding threads
        // alone were seen to differ by 15.
        EXPECT_LT(growth, 20'480) << testing::PrintToString(samples);
    }
    EXPECT_LE(after.threads, before.threads + 8);         // workers come and go
    EXPECT_LE(after.descriptors, before.descriptors + 6); // as do kept connections
}

} // namespace

} // namespace virlo::test
