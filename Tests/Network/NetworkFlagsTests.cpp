#include "KernelNetworkFlags.h"

#include <gtest/gtest.h>

#include <sched.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <netinet/in.h>
#include <string>
#include <thread>

namespace virlo::test
{
namespace
{

/// Runs `work` on a thread in a new network namespace: the machine's network is not touched. False where the
/// system does not allow that, or lacks `ip` or virtual links.
bool inOwnNetwork(const std::function<void()>& work)
{
    bool possible = false;
    std::thread([&] {
        possible = ::unshare(CLONE_NEWNET) == 0 &&
                   std::system("ip link add net0 type veth peer name peer0 2>/dev/null") == 0;
        if (possible)
            work();
    }).join();
    return possible;
}

void ip(const std::string& arguments)
{
    ASSERT_EQ(std::system(("ip " + arguments).c_str()), 0) << arguments;
}

/// A link takes a moment to find its carrier, so the flags are asked for until they are as expected.
void expectFlags(const std::function<std::optional<std::uint32_t>()>& flags, std::uint32_t expected)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (flags() != expected && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(flags(), expected);
}

constexpr std::uint32_t outside = 0xC6336401;   // 198.51.100.1
constexpr std::uint32_t neighbour = 0x0A000002; // 10.0.0.2
constexpr std::uint32_t own = 0x0A000001;
constexpr std::uint32_t linkLocal = 0xA9FE0000;

TEST(KernelNetworkFlags, FollowRoutesLinksAndAddresses)
{
    const bool possible = inOwnNetwork([] {
        const KernelNetworkFlags flags;
        EXPECT_EQ(flags.flagsForAddress(INADDR_ANY), 0U);
        EXPECT_EQ(flags.flagsForAddress(linkLocal), 0U);

        ip("link set lo up");
        EXPECT_EQ(flags.flagsForHost("localhost"), NetworkFlagReachable | NetworkFlagIsLocalAddress);
        EXPECT_EQ(flags.flagsForAddress(INADDR_ANY), 0U);

        ip("address add 10.0.0.1/24 dev net0");
        ip("link set net0 up");
        ip("link set peer0 up");
        EXPECT_EQ(flags.flagsForAddress(own), NetworkFlagReachable | NetworkFlagIsLocalAddress);
        expectFlags([&] { return flags.flagsForAddress(neighbour); },
                    NetworkFlagReachable | NetworkFlagIsDirect);
        EXPECT_EQ(flags.flagsForAddress(outside), 0U);
        EXPECT_EQ(flags.flagsForAddress(linkLocal), NetworkFlagReachable | NetworkFlagIsDirect);

        ip("route add default via 10.0.0.2");
        EXPECT_EQ(flags.flagsForAddress(INADDR_ANY), NetworkFlagReachable);
        EXPECT_EQ(flags.flagsForHost("ads.example"), NetworkFlagReachable);
        EXPECT_EQ(flags.flagsForHost("10.0.0.2"), NetworkFlagReachable | NetworkFlagIsDirect);
        EXPECT_EQ(flags.flagsForAddress(linkLocal), NetworkFlagReachable | NetworkFlagIsDirect);

        ip("link set peer0 down"); // the cable is unplugged: the route remains
        expectFlags([&] { return flags.flagsForAddress(INADDR_ANY); }, 0);
        EXPECT_EQ(flags.flagsForAddress(linkLocal), 0U);
        ip("link set peer0 up");

        ip("route replace unreachable default");
        EXPECT_EQ(flags.flagsForAddress(INADDR_ANY), 0U);
        ip("route del default");
        ip("-6 address add 2001:db8::1/64 dev net0 nodad");
        ip("-6 route add default via 2001:db8::2");
        expectFlags([&] { return flags.flagsForAddress(INADDR_ANY); },
                    NetworkFlagReachable); // over IPv6 alone

        ip("link set net0 down");
        ip("link set net0 name wwan0"); // the name of a modem
        ip("link set wwan0 up");
        ip("route add default via 10.0.0.2");
        expectFlags([&] { return flags.flagsForAddress(INADDR_ANY); },
                    NetworkFlagReachable | NetworkFlagIsWWAN);
    });
    if (!possible)
        GTEST_SKIP() << "needs the right to make a network namespace, and iproute2";
}

TEST(KernelNetworkFlags, WatchReportsChangesUntilItsEndEvenInsideItsOwnCall)
{
    const bool possible = inOwnNetwork([] {
        std::mutex mutex;
        std::condition_variable called;
        int calls = 0;
        std::unique_ptr<NetworkFlagsSource::Watch> endsItself;
        std::unique_lock lock(mutex);
        endsItself = KernelNetworkFlags().watch([&] {
            const std::lock_guard inside(mutex);
            endsItself.reset();
        });
        auto watch = KernelNetworkFlags().watch([&] {
            const std::lock_guard inside(mutex);
            ++calls;
            called.notify_all();
        });
        ASSERT_TRUE(watch && endsItself);
        ip("link set lo up");
        EXPECT_TRUE(called.wait_for(lock, std::chrono::seconds(5), [&] { return calls > 0 && !endsItself; }));
        lock.unlock();
        watch.reset();
        const int callsBefore = calls; // the end has waited for a running call
        ip("link set net0 up");
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_EQ(calls, callsBefore);
    });
    if (!possible)
        GTEST_SKIP() << "needs the right to make a network namespace, and iproute2";
}

} // namespace
} // namespace virlo::test
