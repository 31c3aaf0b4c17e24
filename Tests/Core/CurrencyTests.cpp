#include "ControllerTest.h"
#include "NotificationCenter.h"
#include "VIRLOConstans.h"

#include <mutex>

namespace virlo::test
{
namespace
{

struct Delegate : VIRLOAdControllerDelegate {
    void didGetCurrency(const JSON& info) override { rewards.push_back(info); }

    std::vector<JSON> rewards;
};

class Currency : public ControllerTest
{
protected:
    Currency()
    {
        controller->setDelegate(delegate);
        observation = NotificationCenter::defaultCenter().addObserver(
            VIRLOAdFrameworkNotificationDidGetCurrency, [this](const Notification& notification) {
                EXPECT_EQ(notification.object, nullptr);
                posted.push_back(notification.userInfo);
            });
        start();
        store->addItem(poll);
    }

    const URL poll = *URL::fromString("https://ads.example/poll");
    const JSON reward = {{"status", true}, {"amount", 5}};
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::unique_ptr<NotificationCenter::Observation> observation;
    std::vector<JSON> posted;
};

TEST_F(Currency, RewardIsPostedDelegatedAndItsURLRemoved)
{
    transport->expect("GET", "/poll", {200, reward.dump()});
    controller->checkAvailableCurrency();
    settleAll();
    EXPECT_EQ(posted, std::vector{reward});
    EXPECT_EQ(delegate->rewards, std::vector{reward});
    EXPECT_TRUE(store->items().empty());

    delegate = nullptr; // held weakly
    store->addItem(poll);
    transport->expect("GET", "/poll", {200, reward.dump()});
    controller->checkAvailableCurrency();
    settleAll();
    EXPECT_EQ(posted.size(), 2U);
}

TEST_F(Currency, NoRewardAndFailureKeepTheURLForADay)
{
    transport->expect("GET", "/poll", {200, R"({"status":false})"});
    transport->expect("GET", "/poll", noResponse());
    for (int check = 0; check < 2; ++check) {
        controller->checkAvailableCurrency();
        settleAll();
    }
    EXPECT_TRUE(posted.empty());
    EXPECT_EQ(store->items(), std::vector{poll});

    transport->expectHeld("PUT", sessionPath); // the session's ping
    clock.advance(Seconds(86401));
    transport->expect("GET", "/poll", {200, R"({"status":false})"});
    controller->checkAvailableCurrency();
    settleAll();
    EXPECT_TRUE(store->items().empty()) << "checked once more after a day, then removed";
}

TEST_F(Currency, ChecksRunAtActivationAndAfterTheirDelays)
{
    transport->expect("PUT", sessionPath);
    transport->expect("GET", "/poll", {200, R"({"status":false})"});
    NotificationCenter::defaultCenter().post(ApplicationDidBecomeActiveNotification);
    clock.advance(Seconds(0));
    EXPECT_EQ(transport->requests("GET", "/poll").size(), 1U);

    controller->checkAvailableCurrencyAfterTimeInterval(5);
    controller->checkAvailableCurrencyAfterTimeInterval(29);
    clock.advance(Seconds(4.9));
    transport->expect("GET", "/poll", {200, R"({"status":false})"});
    clock.advance(Seconds(0.1));
    EXPECT_EQ(transport->requests("GET", "/poll").size(), 2U);
    transport->expect("GET", "/poll", {200, reward.dump()});
    clock.advance(Seconds(24));
    EXPECT_EQ(posted, std::vector{reward});
}

} // namespace
} // namespace virlo::test
