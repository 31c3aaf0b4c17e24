#include "LogCapture.h"
#include "MediaTest.h"
#include "Settle.h"
#include "TestSound.h"

#include <gmock/gmock.h>

namespace virlo::test
{

namespace
{

class Sound : public MediaTest
{
};

TEST_F(Sound, IsHeardUnlessMuted)
{
    const int before = TestSound::heard();
    play({served({.seconds = 0.5})});
    ASSERT_TRUE(runsOut());
    const int heard = TestSound::heard();
    EXPECT_GT(heard, before);
    make({served({.seconds = 0.5}), served({.seconds = 0.5})});
    player->setMuted(true);
    player->play();
    ASSERT_TRUE(runsOut());
    // What was found at the start may have come before the wish.
    EXPECT_LE(TestSound::heard(), heard + 1);
}

TEST_F(Sound, ThatLosesItsDeviceLeavesTheFramesPlaying)
{
    expectLog("No sound, the video continues without: The sound device is gone");
    const auto item = served("sound.mp4", {});
    // No server has to help: this one cannot seek.
    server().setFault({.path = path("sound.mp4"),
                       .status = 200,
                       .body = clipBytes({}),
                       .contentType = "video/mp4",
                       .headers = {{"Accept-Ranges", "none"}}});
    play({item});
    ASSERT_TRUE(settle([&] { return player->currentTime() > Seconds(0.6); }));
    TestSound::pullOut();
    ASSERT_TRUE(runsOut());
    EXPECT_THAT(ends(), testing::Contains("ended 0"));
    EXPECT_GT(item->videoFrameCounts().arrived, 55);
    EXPECT_EQ(server().requests().size(), 1U) << "played on, not begun again";
}

} // namespace

} // namespace virlo::test
