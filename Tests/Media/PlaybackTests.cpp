#include "GstMediaEngine.h"
#include "MediaTest.h"
#include "RowName.h"
#include "Settle.h"

#include <gmock/gmock.h>

#include <cmath>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

struct FormatRow {
    const char* name;
    Clip clip;
};

class Formats : public MediaTest, public testing::WithParamInterface<FormatRow>
{
};

TEST_P(Formats, PlayToTheirEndFromTheServer)
{
    const auto item = served(GetParam().name, GetParam().clip);
    play({item});
    ASSERT_TRUE(runsOut()) << testing::PrintToString(log);
    EXPECT_THAT(ends(), ElementsAre("ended 0", "item none"));
    ASSERT_TRUE(item->duration());
    EXPECT_NEAR(item->duration()->count(), GetParam().clip.seconds, 0.15);
    EXPECT_EQ(item->currentTime(), *item->duration());
    EXPECT_EQ(item->status(), PlayerItem::Status::ReadyToPlay);
    const auto counts = item->videoFrameCounts();
    const long frames = GetParam().clip.hasFrames ? std::lround(GetParam().clip.seconds * 30) : 0;
    // The first frame counts twice: when it is ready, and when it is due.
    EXPECT_NEAR(static_cast<double>(counts.arrived + counts.late), static_cast<double>(frames), 2);
}

INSTANTIATE_TEST_SUITE_P(
    , Formats,
    testing::Values(FormatRow{"Mp4", {.seconds = 0.5}}, FormatRow{"Webm", {.seconds = 0.5, .webm = true}},
                    FormatRow{"Mp4WithoutSound", {.seconds = 0.5, .sound = false}},
                    FormatRow{"WebmWithoutSound", {.seconds = 0.5, .sound = false, .webm = true}},
                    FormatRow{"Mp4WithoutFrames", {.seconds = 0.5, .hasFrames = false}}),
    rowName);

class Playback : public MediaTest
{
};

TEST_F(Playback, FollowsFromItemToItemWithoutAGap)
{
    // Each needs other decoders.
    play({served({.seconds = 0.6}), served({.seconds = 0.6, .sound = false}),
          served({.seconds = 0.6, .sound = false, .webm = true}), served({.seconds = 0.6})});
    std::vector<std::chrono::steady_clock::time_point> frames;
    const auto observer =
        player->addFrameObserver([&] { frames.push_back(std::chrono::steady_clock::now()); });
    ASSERT_TRUE(runsOut());
    EXPECT_THAT(ends(), ElementsAre("ended 0", "item 1", "ended 1", "item 2", "ended 2", "item 3", "ended 3",
                                    "item none"));
    Seconds longest{0};
    for (std::size_t i = 1; i < frames.size(); ++i)
        longest = std::max<Seconds>(longest, frames[i] - frames[i - 1]);
    RecordProperty("longest_gap_ms", static_cast<int>(longest.count() * 1000));
    EXPECT_LT(longest.count(), 0.2);
    EXPECT_GT(frames.size(), 60U);
}

TEST_F(Playback, EndsWhereAnObserverReleasesThePlayer)
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

TEST_F(Playback, LeavesAFrameValidThatSomebodyStillHolds)
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
