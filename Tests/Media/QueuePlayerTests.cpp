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

/// Players of clips whose fate the test decides.
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

TEST_F(Queue, LoadsTheNextItemOnceTheOneBeforeIsHereOrNearsItsEnd)
{
    makeOf(3);
    EXPECT_TRUE(clip(0).isLoaded);
    engine.ready(address(0), Seconds(60));
    player->play();
    pumpMainLoop();
    EXPECT_TRUE(clip(0).isPlaying);
    EXPECT_FALSE(clip(1).isLoaded) << "both would share the line";
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

TEST_F(Queue, TellsChangesInOrderWithOldAndNewValues)
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

TEST_F(Queue, KeepsWhatAnItemWasAfterItHasLeft)
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

TEST_F(Queue, MutesWhatPlaysAndWhatComes)
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
    player->advanceToNextItem();
    pumpMainLoop();
    EXPECT_TRUE(clip(1).isMuted);
}

TEST_F(Queue, TicksOncePerStepOfTimeAndAnewForEachItem)
{
    makeOf(2);
    std::vector<double> times;
    const auto token = player->addPeriodicTimeObserver(Seconds(1), nullptr,
                                                       [&](Seconds time) { times.push_back(time.count()); });
    engine.ready(address(0), Seconds(20));
    engine.ready(address(1), Seconds(20));
    player->play();
    settleAll();
    for (const double time : {0.5, 0.99, 1.0, 1.7, 4.2, 4.9, 5.0}) {
        engine.moveTo(address(0), Seconds(time));
        settleAll();
    }
    engine.end(address(0));
    settleAll();
    engine.moveTo(address(1), Seconds(1.1));
    settleAll();
    EXPECT_THAT(times, ElementsAre(1.0, 4.2, 5.0, 1.1));
    engine.moveTo(address(1), Seconds(2.1));
    player->removeTimeObserver(token);
    settleAll();
    EXPECT_EQ(times.size(), 4U);
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

TEST_F(Queue, AnswersPrerollsOnce)
{
    makeOf(2);
    std::vector<bool> answers;
    const auto answer = [&](bool finished) { answers.push_back(finished); };
    player->preroll(answer);
    pumpMainLoop();
    EXPECT_TRUE(answers.empty());
    player->cancelPendingPrerolls();
    pumpMainLoop();
    EXPECT_THAT(answers, ElementsAre(false));
    player->preroll(answer);
    engine.ready(address(0), Seconds(5));
    pumpMainLoop();
    EXPECT_THAT(answers, ElementsAre(false, true));
    player->advanceToNextItem();
    player->preroll(answer);
    engine.end(address(1), Phase::Failed);
    pumpMainLoop();
    player->removeAllItems();
    player->preroll(answer);
    pumpMainLoop();
    EXPECT_THAT(answers, ElementsAre(false, true, false, false));
}

} // namespace

} // namespace virlo::test
