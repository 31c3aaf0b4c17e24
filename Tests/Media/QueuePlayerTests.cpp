#include "FakeMediaEngine.h"
#include "MediaTest.h"
#include "Settle.h"

#include <gmock/gmock.h>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using Phase = PlaybackFacts::Phase;

/// Players on a fake engine.
class Queue : public MediaTest
{
protected:
    ~Queue() override { player.reset(); }

    static std::string address(int index) { return "https://clips.example/" + std::to_string(index); }

    void makeOf(int count)
    {
        QueuePlayer::Items made;
        for (int index = 0; index < count; ++index)
            made.push_back(PlayerItem::playerItemWithURL(*URL::fromString(address(index))));
        make(made);
        pumpMainLoop();
    }

    FakeMediaEngine::Clip& clip(int index) { return engine.at(address(index)); }

    FakeMediaEngine engine;
};

TEST_F(Queue, LoadsTheNextItemOnceTheOneBeforeIsTransferredOrNearItsEnd)
{
    makeOf(3);
    EXPECT_TRUE(clip(0).isLoaded);
    engine.ready(address(0), Seconds(60));
    player->play();
    pumpMainLoop();
    EXPECT_TRUE(clip(0).isPlaying);
    EXPECT_FALSE(clip(1).isLoaded) << "both would share the connection";
    engine.ready(address(0), Seconds(60), true);
    pumpMainLoop();
    EXPECT_TRUE(clip(1).isLoaded);
    EXPECT_FALSE(clip(1).isPlaying);
    engine.end(address(0));
    pumpMainLoop();
    EXPECT_FALSE(clip(0).isLoaded);
    EXPECT_TRUE(clip(1).isPlaying);
    engine.ready(address(1), Seconds(60));
    clip(1).time = Seconds(51);
    engine.log(address(1), {100, 1});
    pumpMainLoop();
    EXPECT_TRUE(clip(2).isLoaded);
}

TEST_F(Queue, NotifiesChangesInOrderWithOldAndNewValues)
{
    makeOf(2);
    std::vector<QueuePlayer::Change> changes;
    const auto observer =
        player->addObserverForKeyPath(QueuePlayer::currentItemKeyPath,
                                      [&](const QueuePlayer::Change& change) { changes.push_back(change); });
    const auto first = player->currentItem();
    const auto second = player->items()->back();
    engine.ready(address(0), Seconds(5));
    player->play();
    player->play();
    pumpMainLoop();
    engine.end(address(0));
    pumpMainLoop();
    engine.end(address(1), Phase::Failed);
    pumpMainLoop();
    EXPECT_THAT(log, ElementsAre("keepup false", "rate 1", "keepup true", "ended 0", "item 1", "keepup false",
                                 "failed 1", "item none", "rate 0", "keepup none"));
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].oldValue, QueuePlayer::Value(first));
    EXPECT_EQ(changes[0].newValue, QueuePlayer::Value(second));
    EXPECT_EQ(changes[1].oldValue, QueuePlayer::Value(second));
    EXPECT_EQ(changes[1].newValue, QueuePlayer::Value());
}

} // namespace

} // namespace virlo::test
