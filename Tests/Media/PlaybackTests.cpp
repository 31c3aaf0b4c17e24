#include "MediaTest.h"
#include "RowName.h"
#include "Settle.h"

#include <gmock/gmock.h>

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
    const long frames = GetParam().clip.picture ? 30 : 0;
    // The first picture counts twice: as it is found, and as its time comes.
    EXPECT_NEAR(static_cast<double>(counts.arrived + counts.late), static_cast<double>(frames), 2);
}

INSTANTIATE_TEST_SUITE_P(
    , Formats,
    testing::Values(FormatRow{"Mp4", {.seconds = 1}}, FormatRow{"Webm", {.seconds = 1, .webm = true}},
                    FormatRow{"Mp4WithoutSound", {.seconds = 1, .sound = false}},
                    FormatRow{"WebmWithoutSound", {.seconds = 1, .sound = false, .webm = true}},
                    FormatRow{"Mp4WithoutPicture", {.seconds = 1, .picture = false}}),
    rowName);

class Playback : public MediaTest
{
};

TEST_F(Playback, FollowsFromItemToItemWithoutAGap)
{
    // Sound and picture, picture alone, another format, and back: each wants other decoders.
    play({served({.seconds = 1}), served({.seconds = 1, .sound = false}),
          served({.seconds = 1, .sound = false, .webm = true}), served({.seconds = 1})});
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
    EXPECT_GT(frames.size(), 100U);
}

} // namespace

} // namespace virlo::test
