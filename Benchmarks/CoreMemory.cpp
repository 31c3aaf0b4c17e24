#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <filesystem>
#include <stdexcept>

namespace
{

constexpr int rounds = 5;

double residentMiB(const std::string& mode, const adserver::AdServer& server)
{
    ChildProcess process(
        {programFolder() + "/bench-core", mode, server.baseURL(), server.authorityFile().string()});
    if (process.readLine() != "ready")
        throw std::runtime_error("the core does not start");
    return process.residentMiB();
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

    const Pair resident = alternate(
        rounds, [&] { return residentMiB("started", server); }, [&] { return residentMiB("idle", server); });
    results.addLimit("resident memory of a started core over an empty process", resident.ours - resident.bare,
                     "MiB", 3);
}
