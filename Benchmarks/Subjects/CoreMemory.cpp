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

    const auto startedOver = [&](const char* mode, double (ChildProcess::*memory)() const) {
        const Pair pair = alternate(
            rounds, [&] { return memoryOf("started", server, memory); },
            [&] { return memoryOf(mode, server, memory); });
        return pair.ours - pair.bare;
    };
    // Over an empty process it is 4 MiB more: code of the TLS library, read from its file by whoever uses it.
    results.addLimit("resident memory of a started core over a process with one request of bare libcurl",
                     startedOver("request", &ChildProcess::residentMiB), "MiB", 2);
    results.addLimit("memory that a started core has written, over an empty process",
                     startedOver("idle", &ChildProcess::writtenMiB), "MiB", 3);
}
