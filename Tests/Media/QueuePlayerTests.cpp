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

TEST_F(Queue, KeepsAnItemsValuesAfterItHasLeft)
{
    makeOf(1);
    const auto item = player->currentItem();
    const std::weak_ptr<const QueuePlayer::Items> list = player->items();
    engine.ready(address(0), Seconds(5));
    engine.log(address(0), {100, 1});
    player->play();
    pumpMainLoop();
    clip(0).time = Seconds(5);
    engine.end(address(0));
    pumpMainLoop();
    EXPECT_EQ(item->currentTime(), Seconds(5));
    EXPECT_EQ(item->duration(), Seconds(5));
    EXPECT_EQ(item->accessLog().size(), 1U);
    EXPECT_TRUE(player->items()->empty());
    EXPECT_FALSE(list.expired()) << "the list it was made with is kept";
    player.reset();
    EXPECT_TRUE(list.expired());
}

TEST_F(Queue, MutesTheCurrentItemAndThoseAfter)
{
    makeOf(2);
    std::vector<std::string> told;
    const auto observer = player->addObserverForKeyPath(QueuePlayer::mutedKeyPath, [&](const auto& change) {
        told.push_back(std::get<bool>(change.oldValue) ? "unmuted" : "muted");
    });
    for (const bool muted : {false, true, true, false, true})
        player->setMuted(muted);
    EXPECT_TRUE(told.empty()) << "never on the caller's stack";
    pumpMainLoop();
    EXPECT_THAT(told, ElementsAre("muted", "unmuted", "muted"));
    EXPECT_TRUE(clip(0).isMuted);
    player->play();
    engine.end(address(0));
    pumpMainLoop();
    EXPECT_TRUE(clip(1).isMuted);
}

TEST_F(Queue, TicksAtEachItemsStartAtEverySecondItPassesAndAtItsEnd)
{
    makeOf(2);
    const auto items = *player->items();
    std::vector<std::string> ticks;
    const auto token =
        player->addPeriodicTimeObserver(Seconds(1), nullptr, [&](const auto& item, Seconds time) {
            ticks.push_back((item == items[0] ? "a " : "b ") + std::to_string(time.count()).substr(0, 3));
        });
    const auto take = [&] {
        settleAll();
        return std::exchange(ticks, {});
    };
    engine.ready(address(0), Seconds(5.5));
    EXPECT_THAT(take(), ElementsAre()) << "not started";
    player->play();
    EXPECT_THAT(take(), ElementsAre("a 0.0"));
    for (const double time : {0.5, 0.99, 1.0, 1.7})
        engine.moveTo(address(0), Seconds(time));
    EXPECT_THAT(take(), ElementsAre("a 1.0"));
    // A main thread that is late: all at once, and then the end.
    engine.moveTo(address(0), Seconds(3.2));
    engine.ready(address(1), Seconds(1));
    clip(0).time = Seconds(5.5);
    engine.end(address(0));
    EXPECT_THAT(take(), ElementsAre("a 2.0", "a 3.0", "a 4.0", "a 5.0", "a 5.5", "b 0.0"));
    clip(1).time = Seconds(1);
    engine.end(address(1));
    EXPECT_THAT(take(), ElementsAre("b 1.0", "b 1.0"));
    player->removeTimeObserver(token);
}

TEST_F(Queue, GivesEachEventOfTheAccessLogANotificationOfItsOwn)
{
    makeOf(1);
    const auto item = player->currentItem();
    std::vector<std::uint64_t> lasts;
    const auto observer = NotificationCenter::defaultCenter().addObserver(
        PlayerItem::newAccessLogEntryNotification,
        [&](const auto&) { lasts.push_back(item->accessLog().back().numberOfBytesTransferred); }, item.get());
    engine.log(address(0), {100, 8});
    engine.log(address(0), {200, 8});
    pumpMainLoop();
    EXPECT_THAT(lasts, ElementsAre(100, 200));
}

} // namespace

} // namespace virlo::test
