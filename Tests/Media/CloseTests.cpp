#include "GstMediaEngine.h"
#include "MainLoop.h"
#include "MediaTest.h"
#include "Settle.h"

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;

/// What players are closed in the middle of, one after another.
class Closing : public MediaTest
{
protected:
    Closing()
    {
        served("a.mp4", {.seconds = 1});
        served("b.webm", {.seconds = 1, .webm = true});
        served("slow.mp4", {.seconds = 4, .kilobitsPerSecond = 2000});
        served("silent.mp4", {});
        server().setFault({.path = path("slow.mp4"), .bytesPerSecond = 400'000});
        server().setFault({.path = path("silent.mp4"), .neverResponds = true});
        server().setFault({.path = path("late.mp4"), .delay = 300ms, .status = 404});
    }

    [[nodiscard]] QueuePlayer::Items items(unsigned round)
    {
        switch (round % 5) {
        case 0:
            return {atServer("a.mp4"), atServer("b.webm")};
        case 1:
            return {atServer("a.mp4"), atServer("a.mp4"), atServer("a.mp4")};
        case 2:
            return {atServer("slow.mp4"), atServer("a.mp4")};
        case 3:
            return {atServer("silent.mp4")};
        default:
            return {atServer("late.mp4"), atServer("nowhere"), atServer("a.mp4")};
        }
    }
};

TEST_F(Closing, AtAnyMomentReturnsAtOnceAndLeavesNothing)
{
    const unsigned rounds = std::getenv("VIRLO_SOAK") != nullptr ? 500 : 60;
    std::mt19937 random(2016);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    Seconds longest{0};
    for (unsigned round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        auto closed = QueuePlayer::queuePlayerWithItems(items(round));
        bool told = false;
        const auto observer =
            closed->addObserverForKeyPath(QueuePlayer::currentItemKeyPath, [&](const auto&) { told = true; });
        const auto frames = closed->addFrameObserver([&] { told = true; });
        if (upTo(4) != 0)
            closed->play();
        // Most faults hide in the first tenth of a second, where everything is being set up.
        const int most = upTo(2) == 0 ? 1500 : 100;
        static_cast<void>(settle([] { return false; }, std::chrono::milliseconds(upTo(most))));
        if (upTo(3) == 0)
            closed->setMuted(true);
        if (upTo(3) == 0)
            closed->pause();
        const bool elsewhere = upTo(2) == 0;
        const auto before = std::chrono::steady_clock::now();
        if (elsewhere)
            std::thread([&] { closed.reset(); }).join();
        else
            closed.reset();
        longest = std::max<Seconds>(longest, std::chrono::steady_clock::now() - before);
        told = false;
        pumpMainLoop();
        EXPECT_FALSE(told);
    }
    RecordProperty("longest_close_us", static_cast<int>(longest.count() * 1e6));
    EXPECT_LT(longest, Seconds(0.1));
    EXPECT_TRUE(GstMediaEngine::drain(Seconds(20)));
}

TEST_F(Closing, FromInsideAnObserverIsFine)
{
    for (const char* const keyPath : {QueuePlayer::currentItemKeyPath, QueuePlayer::rateKeyPath,
                                      QueuePlayer::playbackLikelyToKeepUpKeyPath}) {
        auto closed = QueuePlayer::queuePlayerWithItems({served({.seconds = 0.2}), served({.seconds = 0.2})});
        const auto observer = closed->addObserverForKeyPath(keyPath, [&](const auto&) { closed.reset(); });
        closed->play();
        EXPECT_TRUE(settle([&] { return closed == nullptr; })) << keyPath;
    }
    auto closed = QueuePlayer::queuePlayerWithItems({served({.seconds = 0.2})});
    const auto observer = closed->addFrameObserver([&] { closed.reset(); });
    EXPECT_TRUE(settle([&] { return closed == nullptr; }));
}

TEST_F(Closing, KeepsAPictureThatSomebodyStillHolds)
{
    auto closed = QueuePlayer::queuePlayerWithItems({served({.seconds = 0.5, .pattern = "white"})});
    std::shared_ptr<const VideoFrame> frame;
    ASSERT_TRUE(settle([&] { return (frame = closed->takeFrame()) != nullptr; }));
    closed.reset();
    EXPECT_TRUE(GstMediaEngine::drain(Seconds(10)));
    EXPECT_EQ(frame->width, 160);
    EXPECT_GT(frame->bits[frame->bytesPerLine * (frame->height - 1) + 4 * (frame->width - 1)], 240);
}

} // namespace

} // namespace virlo::test
