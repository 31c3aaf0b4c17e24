#include "Benchmarks.h"

#include "FileSystem.h"
#include "GlobalQueue.h"
#include "NetworkFlags.h"
#include "SystemLog.h"
#include "VIRLOAdController.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTrackingManager.h"

#include "AdServer.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace
{

using namespace std::chrono_literals;

/// A disk on which reading and writing take as long as on a worn flash chip that collects its garbage.
class SlowDisk : public virlo::FileSystem
{
public:
    bool exists(const std::string& path) const override { return m_disk.exists(path); }

    bool isDirectory(const std::string& path) const override { return m_disk.isDirectory(path); }

    virlo::OptionalError createDirectories(const std::string& path) override
    {
        std::this_thread::sleep_for(m_delay.load());
        return m_disk.createDirectories(path);
    }

    std::optional<std::string> read(const std::string& path, std::size_t limit) const override
    {
        std::this_thread::sleep_for(m_delay.load());
        return m_disk.read(path, limit);
    }

    virlo::OptionalError writeAtomically(const std::string& path, std::string_view content) override
    {
        std::this_thread::sleep_for(m_delay.load());
        return m_disk.writeAtomically(path, content);
    }

    /// What is left to write is written at once.
    void hurry() { m_delay = 0ms; }

private:
    std::atomic<std::chrono::milliseconds> m_delay{300ms};
    virlo::FileSystem& m_disk = virlo::FileSystem::shared();
};

} // namespace

void benchPublicCalls(Results& results)
{
    const auto folder = std::filesystem::temp_directory_path() / "virlo-bench-public-calls";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "tracking");
    std::filesystem::create_directories(folder / "polls");
    // What the server responds to too late fails, a thousand times over.
    virlo::setSystemLogSink([](std::string_view) {});
    SlowDisk disk;
    virlo::FileSystem::setShared(&disk);
    const auto flags = virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable);
    virlo::NetworkFlagsSource::setShared(flags.get());

    adserver::AdServerOptions options;
    options.plainHTTP = true;
    options.port = 0;
    options.stateFolder = folder / "server";
    adserver::AdServer server(options);
    server.start();
    adserver::AdServerFault slow;
    slow.path = "*";
    slow.delay = 2s;
    server.setFault(slow);

    const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString(server.baseURL()));
    const auto tracking = VIRLOTrackingManager::initWithDirectoryPath((folder / "tracking").string());
    const auto store = VIRLOAppRequestStore::storeWithDirectoryPath((folder / "polls").string());
    const auto ads = VIRLOAdController::controllerWithCollaborators(api, tracking, store);

    std::vector<double> seconds;
    const auto call = [&](const std::function<void()>& work) { seconds.push_back(timed(work)); };
    for (int round = 0; round < roundsOf(400); ++round) {
        call([&] { ads->startWithAppIdentifier("bench"); });
        call([&] {
            ads->adViewControllerForPlacementWithCompletion("LevelUp", [](const auto&, const auto&) {});
        });
        call([&] { ads->applicationDidEnterForeground(); });
        call([&] { ads->checkAvailableCurrency(); });
        call([&] { ads->registerThirdPartyUserIdWithCompletion("viewer", [](const auto&) {}); });
        call([&] { ads->applicationDidEnterBackground(); });
        call([&] { (void)ads->currentPlacement(); });
        // What closing a screen asks of the controller.
        call([&] { ads->checkAvailableCurrencyAfterTimeInterval(5); });
        call([&] { ads->checkAvailableCurrencyAfterTimeInterval(30); });
        std::this_thread::sleep_for(1ms);
    }
    results.addLimit("public call on the main thread, slow server and disk, 99th percentile",
                     percentile(seconds, 0.99) * 1e3, "ms", 1.0);

    server.stop();
    disk.hurry();
    virlo::URLSession::drain(virlo::Seconds(5));
    if (!virlo::GlobalQueue::drain(virlo::Seconds(60)))
        throw std::runtime_error("the queues do not end");
    virlo::FileSystem::setShared(nullptr);
    virlo::NetworkFlagsSource::setShared(nullptr);
    virlo::setSystemLogSink(nullptr);
}
