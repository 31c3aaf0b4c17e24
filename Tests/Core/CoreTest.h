#pragma once

#include "FakeTransport.h"
#include "FaultyFileSystem.h"
#include "LogCapture.h"
#include "NetworkFlags.h"
#include "Settle.h"
#include "TemporaryFolder.h"
#include "TestClock.h"
#include "VIRLOAdServerAPI.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace virlo::test
{

/// A network that the test turns on and off, installed for its lifetime.
class TestNetwork : public NetworkFlagsSource
{
public:
    TestNetwork() { setShared(this); }

    ~TestNetwork() override { setShared(nullptr); }

    TestNetwork(const TestNetwork&) = delete;
    TestNetwork& operator=(const TestNetwork&) = delete;

    void setReachable(bool reachable) { m_reachable = reachable; }

    /// Runs `work` once, after the next query has read the flags and before it returns them.
    void duringNextQuery(std::function<void()> work)
    {
        const std::lock_guard lock(m_mutex);
        m_duringQuery = std::move(work);
    }

    [[nodiscard]] std::optional<std::uint32_t> flagsForAddress(std::uint32_t) const override
    {
        const std::uint32_t flags = m_reachable ? NetworkFlagReachable : 0U;
        std::function<void()> work;
        {
            const std::lock_guard lock(m_mutex);
            work.swap(m_duringQuery);
        }
        if (work)
            work();
        return flags;
    }

    [[nodiscard]] std::optional<std::uint32_t> flagsForHost(const std::string&) const override
    {
        return flagsForAddress(0);
    }

    [[nodiscard]] std::unique_ptr<Watch> watch(std::function<void()>) override { return nullptr; }

private:
    std::atomic<bool> m_reachable{true};
    mutable std::mutex m_mutex;
    mutable std::function<void()> m_duringQuery;
};

/// A server object with a scripted transport, a clock that the test advances, a reachable network and a disk
/// of its own.
class CoreTest : public testing::Test
{
protected:
    static constexpr const char* startPath = "/app/sess/host";
    static constexpr const char* sessionPath = "/app/sess/";

    CoreTest();
    ~CoreTest() override;

    /// The server's response to a session's start and pings.
    [[nodiscard]] static FakeResponse sessionResponse(const std::string& more = R"("pingInterval":30)",
                                                      const std::string& state = "SESSION_ACTIVE");
    /// Opens the session "s-1".
    void startSession();

    /// Each test begins an hour after the previous one, because measurements stay in the process.
    [[nodiscard]] static Date freshDate();

    TemporaryFolder folder;
    FaultyFileSystem disk;
    TestNetwork network;
    TestClock clock{freshDate()};
    std::shared_ptr<FakeTransport> transport = FakeTransport::make();
    std::shared_ptr<VIRLOAdServerAPI> api;
};

} // namespace virlo::test
