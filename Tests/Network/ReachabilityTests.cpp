#include "VIRLOReachability.h"

#include "LogCapture.h"
#include "NotificationCenter.h"
#include "Settle.h"

#include <netinet/in.h>

#include <gtest/gtest.h>

namespace virlo::test
{
namespace
{

/// Returns what the test sets and lets it announce changes.
class StatedFlags : public NetworkFlagsSource
{
public:
    StatedFlags() { setShared(this); }

    ~StatedFlags() override { setShared(nullptr); }

    std::optional<std::uint32_t> flagsForAddress(std::uint32_t address) const override
    {
        asked = address;
        return flags;
    }

    std::optional<std::uint32_t> flagsForHost(const std::string&) const override { return flags; }

    std::unique_ptr<Watch> watch(std::function<void()> call) override
    {
        changed = std::move(call);
        return watchable ? std::make_unique<Watch>() : nullptr;
    }

    std::optional<std::uint32_t> flags;
    mutable std::uint32_t asked = 1;
    std::function<void()> changed;
    bool watchable = true;
};

TEST(Reachability, FlagsGiveTheirStatusAndTheirLine)
{
    using Reachability = VIRLOReachability;

    struct Row {
        std::uint32_t flags;
        bool localWiFi;
        Reachability::NetworkStatus status;
        const char* line;
    };

    StatedFlags source;
    const auto internet = Reachability::reachabilityForInternetConnection();
    const auto localWiFi = Reachability::reachabilityForLocalWiFi();
    for (const auto& row : {
             Row{0x0, false, Reachability::NotReachable, "-- ------- networkStatusForFlags"},
             Row{0x2, false, Reachability::ReachableViaWiFi, "-R ------- networkStatusForFlags"},
             Row{0x6, false, Reachability::NotReachable, "-R -c----- networkStatusForFlags"},
             Row{0x2E, false, Reachability::ReachableViaWiFi, "-R -cC-D-- networkStatusForFlags"},
             Row{0x3E, false, Reachability::NotReachable, "-R -cCiD-- networkStatusForFlags"},
             Row{0x40002, false, Reachability::ReachableViaWWAN, "WR ------- networkStatusForFlags"},
             Row{0x40000, false, Reachability::NotReachable, "W- ------- networkStatusForFlags"},
             Row{0x30003, false, Reachability::ReachableViaWiFi, "-R t----ld networkStatusForFlags"},
             Row{0x20002, true, Reachability::ReachableViaWiFi, "-R ------d localWiFiStatusForFlags"},
             Row{0x2, true, Reachability::NotReachable, "-R ------- localWiFiStatusForFlags"},
             Row{0x20000, true, Reachability::NotReachable, "-- ------d localWiFiStatusForFlags"},
         }) {
        SCOPED_TRACE(row.line);
        source.flags = row.flags;
        EXPECT_EQ((row.localWiFi ? localWiFi : internet)->currentReachabilityStatus(), row.status);
        EXPECT_EQ(source.asked, row.localWiFi ? 0xA9FE0000U : 0U);
        EXPECT_EQ(logLines().back(), std::string("Reachability Flag Status: ") + row.line);
    }
    EXPECT_EQ(logLines().size(), 11U);
}

TEST(Reachability, UnreadableFlagsAreNotReachableAndPrintNothing)
{
    StatedFlags source;
    const auto reachability = VIRLOReachability::reachabilityForInternetConnection();
    EXPECT_EQ(reachability->currentReachabilityStatus(), VIRLOReachability::NotReachable);
    EXPECT_FALSE(reachability->connectionRequired());
    EXPECT_TRUE(logLines().empty());
    source.flags = 0x4;
    EXPECT_TRUE(reachability->connectionRequired());
    EXPECT_TRUE(logLines().empty());
}

TEST(Reachability, IsMadeOfNamesAndIPv4AddressesOnly)
{
    EXPECT_EQ(VIRLOReachability::reachabilityWithHostName(""), nullptr);
    EXPECT_NE(VIRLOReachability::reachabilityWithHostName("ads.example"), nullptr);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(0x0A000001);
    const auto& generic = reinterpret_cast<const sockaddr&>(address);
    StatedFlags source;
    EXPECT_FALSE(VIRLOReachability::reachabilityWithAddress(generic)->connectionRequired());
    EXPECT_EQ(source.asked, 0x0A000001U);
    address.sin_family = AF_UNIX;
    EXPECT_EQ(VIRLOReachability::reachabilityWithAddress(generic), nullptr);
}

TEST(Reachability, NotifierPostsChangedFlagsOnTheMainLoopUntilStopped)
{
    StatedFlags source;
    const auto reachability = VIRLOReachability::reachabilityForInternetConnection();
    std::vector<const void*> senders;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        "kVIRLONetworkReachabilityChangedNotification", [&](const Notification& notification) {
            EXPECT_TRUE(notification.userInfo.is_null());
            senders.push_back(notification.object);
        });

    source.flags = 0x2;
    EXPECT_TRUE(reachability->startNotifier());
    source.changed(); // about something else: the flags are the same
    pumpMainLoop();
    EXPECT_TRUE(senders.empty());

    source.flags = 0;
    source.changed();
    EXPECT_TRUE(senders.empty()) << "posted on the source's thread";
    pumpMainLoop();
    source.changed();
    pumpMainLoop();
    EXPECT_EQ(senders, std::vector<const void*>{reachability.get()});

    source.flags = 0x2;
    source.changed();
    reachability->stopNotifier();
    pumpMainLoop();
    EXPECT_EQ(senders.size(), 1U);

    source.watchable = false;
    EXPECT_FALSE(reachability->startNotifier());
}

} // namespace
} // namespace virlo::test
