#include "Footprint.h"
#include "MediaTest.h"
#include "RowName.h"
#include "Settle.h"

#include <gmock/gmock.h>

#include <functional>
#include <sys/resource.h>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;

/// A clip whose decoder nobody has.
std::string undecodable()
{
    std::string bytes = clipBytes({.seconds = 1, .sound = false});
    // The names of the codec and of its configuration become unknown ones.
    for (const char* const name : {"avc1", "avcC"}) {
        for (auto at = bytes.find(name); at != std::string::npos; at = bytes.find(name))
            bytes.replace(at, 4, "zzzz");
    }
    return bytes;
}

struct FailureRow {
    const char* name;
    std::function<std::string()> bytes; ///< null: there is no such file
    MediaEngine::ErrorCode code;
};

class Failures : public MediaTest, public testing::WithParamInterface<FailureRow>
{
};

TEST_P(Failures, AreReportedAndTheQueueContinues)
{
    if (GetParam().bytes)
        serve(GetParam().name, GetParam().bytes());
    const auto bad = atServer(GetParam().bytes ? GetParam().name : "nowhere");
    make({bad, served({.seconds = 0.5})});
    ASSERT_TRUE(settle([&] { return bad->status() == PlayerItem::Status::Failed; }));
    ASSERT_TRUE(bad->error());
    EXPECT_EQ(bad->error()->domain, MediaEngine::errorDomain);
    EXPECT_EQ(bad->error()->code, GetParam().code) << describe(*bad->error());
    EXPECT_EQ(bad->error()->userInfo["URL"], bad->url().absoluteString());
    settleAll();
    EXPECT_EQ(player->currentItem(), bad) << "it stays until the player plays";
    player->play();
    ASSERT_TRUE(runsOut());
    EXPECT_THAT(ends(), ElementsAre("failed 0", "item 1", "ended 1", "item none"));
}

INSTANTIATE_TEST_SUITE_P(
    , Failures,
    testing::Values(FailureRow{"Missing", nullptr, MediaEngine::unreachable},
                    FailureRow{"Text", [] { return std::string(5000, 'x'); }, MediaEngine::notMedia},
                    FailureRow{"Empty", [] { return std::string(); }, MediaEngine::notMedia},
                    FailureRow{"HeadAlone", [] { return clipBytes({}).substr(0, 200); },
                               MediaEngine::notMedia},
                    FailureRow{"NoDecoder", undecodable, MediaEngine::noDecoder}),
    rowName);

class Endings : public MediaTest
{
protected:
    void expectOneEnd(Seconds limit = Seconds(25))
    {
        EXPECT_TRUE(runsOut(limit)) << testing::PrintToString(log);
        EXPECT_THAT(ends(), testing::Contains(testing::AnyOf("ended 0", "failed 0")).Times(1))
            << testing::PrintToString(log);
    }
};

TEST_F(Endings, AVideoWithoutAnyLengthOrCutInTheMiddleEnds)
{
    const std::string whole = clipBytes({});
    serve("half.mp4", whole.substr(0, whole.size() / 2));
    play({atServer("half.mp4")});
    expectOneEnd();
    for (const bool webm : {false, true}) {
        play({served({.seconds = 0, .sound = false, .webm = webm})});
        expectOneEnd();
    }
}

TEST_F(Endings, AConnectionThatBreaksForGoodEndsTheItem)
{
    const auto item = served("cut.mp4", {.seconds = 8, .kilobitsPerSecond = 2000});
    server().setFault({.path = path("cut.mp4"), .cutBodyAfter = 300'000, .times = 1});
    server().setFault({.path = path("cut.mp4"), .drop = true});
    server().setFault({.path = path("cut.mp4"), .cutBodyAfter = 300'000, .times = 1});
    play({item});
    expectOneEnd();
    EXPECT_LT(item->currentTime(), Seconds(7));
}

TEST_F(Endings, AServerThatNeverRespondsTimesOut)
{
    const auto item = served("silent.mp4", {});
    server().setFault({.path = path("silent.mp4"), .neverResponds = true});
    play({item});
    expectOneEnd();
    EXPECT_EQ(item->status(), PlayerItem::Status::Failed);
}

TEST_F(Endings, AVideoFailsWhereTooFewDescriptorsAreFree)
{
    const auto items = {served("few.mp4", {.seconds = 0.5}), served("many.mp4", {.seconds = 0.5})};
    rlimit usual{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    rlimit few = usual;
    few.rlim_cur = static_cast<rlim_t>(Footprint::now().descriptors) + 30;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    play({*items.begin()});
    EXPECT_TRUE(runsOut());
    EXPECT_THAT(ends(), ElementsAre("failed 0", "item none"));
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    play({*std::next(items.begin())});
    EXPECT_TRUE(runsOut());
    EXPECT_THAT(ends(), ElementsAre("ended 0", "item none"));
}

TEST(PlayerItems, AreMadeOfNetworkAddressesAlone)
{
    for (const char* const address : {"file:///etc/passwd", "/etc/passwd", "ftp://host/clip.mp4", "data:,x",
                                      "https:///clip.mp4", "playbin://x", "clip.mp4"})
        EXPECT_EQ(PlayerItem::playerItemWithURL(*URL::fromString(address)), nullptr) << address;
    EXPECT_NE(PlayerItem::playerItemWithURL(*URL::fromString("HTTPS://host/clip.mp4")), nullptr);
}

} // namespace

} // namespace virlo::test
