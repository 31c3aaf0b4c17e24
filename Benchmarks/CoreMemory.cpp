#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <filesystem>
#include <stdexcept>

namespace
{

constexpr int rounds = 5;

double memoryOf(const std::string& mode, const adserver::AdServer& server,
                double (ChildProcess::*memory)() const)
{
    ChildProcess process(
        {programFolder() + "/bench-core", mode, server.baseURL(), server.authorityFile().string()});
    if (process.readLine() != "ready")
        throw std::runtime_error("the core does not start");
    return (process.*memory)();
}

} // namespace

void benchCoreMemory(Results& results)
{
    const auto folder = std::filesystem::temp_directory_path() / "virlo-bench-core-memory";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    adserver::AdServerOptions options;
    options.stateFolder = folder / "server";
    adserver::AdServer server(options);
    server.start();

    const auto startedOverIdle = [&](double (ChildProcess::*memory)() const) {
        const Pair pair = alternate(
            rounds, [&] { return memoryOf("started", server, memory); },
            [&] { return memoryOf("idle", server, memory); });
        return pair.ours - pair.bare;
    };
    results.addLimit("resident memory of a started core over an empty process",
                     startedOverIdle(&ChildProcess::residentMiB), "MiB", 3);
    // The rest is code of the TLS library, read from its file once it is used.
    results.addLimit("of that, memory that the core has written", startedOverIdle(&ChildProcess::writtenMiB),
                     "MiB", 3);
}
