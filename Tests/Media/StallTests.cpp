#include "MediaTest.h"
#include "Settle.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;
using Instant = std::chrono::steady_clock::time_point;

Instant now()
{
    return Instant::clock::now();
}

class Stalls : public MediaTest
{
protected:
    [[nodiscard]] bool waitsFor(const std::string& line, Seconds limit = Seconds(20))
    {
        return settle([&] { return std::find(log.begin(), log.end(), line) != log.end(); }, limit);
    }

    [[nodiscard]] static double megabits(const PlayerAccessLogEvent& event)
    {
        return event.observedBitrate / 1e6;
    }
};

TEST_F(Stalls, AreNotifiedWithinHalfASecondAndAPauseDuringOneHolds)
{
    const auto item = served("stall.mp4", {.seconds = 5, .kilobitsPerSecond = 1000});
    server().setFault({.path = path("stall.mp4"), .stallBodyAfter = 350'000, .stallFor = 4500ms});
    make({item});
    Instant lastFrame;
    Instant notified;
    const auto frames = player->addFrameObserver([&] { lastFrame = now(); });
    const auto keepUp =
        player->addObserverForKeyPath(QueuePlayer::playbackLikelyToKeepUpKeyPath, [&](const auto& change) {
            if (change.oldValue == QueuePlayer::Value(true) && notified == Instant())
                notified = now();
        });
    ASSERT_TRUE(waitsFor("keepup true"));
    player->play();
    ASSERT_TRUE(waitsFor("stalled 0"));
    EXPECT_LT(notified - lastFrame, 500ms);
    EXPECT_EQ(player->rate(), 1);
    EXPECT_FALSE(item->isPlaybackLikelyToKeepUp());
    player->pause();
    log.clear();
    ASSERT_TRUE(waitsFor("keepup true"));
    const Seconds before = player->currentTime();
    static_cast<void>(settle([] { return false; }, Seconds(0.4)));
    EXPECT_NEAR(player->currentTime().count(), before.count(), 0.01);
    player->play();
    ASSERT_TRUE(runsOut());
    EXPECT_THAT(ends(), testing::Contains("ended 0"));
}

TEST_F(Stalls, DoNotHappenToAVideoThatArrivesFastEnough)
{
    const auto item = served("even.mp4", {.seconds = 3, .kilobitsPerSecond = 600});
    server().setFault({.path = path("even.mp4"), .bytesPerSecond = 150'000});
    play({item});
    ASSERT_TRUE(runsOut());
    EXPECT_THAT(log, testing::Not(testing::Contains("stalled 0")));
    EXPECT_EQ(std::count(log.begin(), log.end(), "keepup true"), 1);
    std::uint64_t bytes = 0;
    for (const PlayerAccessLogEvent& event : item->accessLog()) {
        bytes += event.numberOfBytesTransferred;
        EXPECT_NEAR(megabits(event), 1.2, 0.3);
    }
    EXPECT_EQ(bytes, clipBytes({.seconds = 3, .kilobitsPerSecond = 600}).size());
}

} // namespace

} // namespace virlo::test
