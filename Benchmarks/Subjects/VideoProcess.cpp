#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <stdexcept>
#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr int rounds = 3;
constexpr std::uint16_t builtInPort = 8443; ///< of the base URL that the presets compile in
constexpr auto afterTheStart = 1s;
constexpr auto watched = 5s;
constexpr int manyVideos = 20;

std::filesystem::path workFolder()
{
    return std::filesystem::temp_directory_path() / "virlo-bench-video-process";
}

/// Its document has the 720p clip as its only media file, which the bare pipeline plays as well.
nlohmann::json campaign()
{
    return {{"rules", {{{"placement", "bench-video"}}}},
            {"advertisement",
             {{"type", "video"},
              {"ads",
               {{{"cid", "bench-video"},
                 {"type", "content"},
                 {"title", "Video"},
                 {"markupUrl", "/vast/video-slow?tx={txid}"}}}}}}};
}

struct Playing {
    double processorSeconds; ///< in `watched`
    double resident;
};

Playing watch(const ChildProcess& process)
{
    std::this_thread::sleep_for(afterTheStart);
    const double before = process.processorSeconds();
    std::this_thread::sleep_for(watched);
    return {process.processorSeconds() - before, process.residentMiB()};
}

/// A host that shows the video.
class Host
{
public:
    explicit Host(const adserver::AdServer& server)
        : process({programFolder() + "/bench-host", server.authorityFile().string(), "1280x720"},
                  {{"XDG_DATA_HOME", (workFolder() / "data").string()},
                   {"XDG_CACHE_HOME", (workFolder() / "cache").string()},
                   {"QT_QPA_PLATFORM", "offscreen"},
                   {"QT_QUICK_BACKEND", "software"}})
    {
    }

    void show()
    {
        process.writeLine("show bench-video");
        if (!process.readLine().starts_with("painted"))
            throw std::runtime_error("the bench host shows no video");
    }

    void close()
    {
        process.writeLine("close");
        if (process.readLine() != "closed")
            throw std::runtime_error("the bench host does not close its video");
    }

    ChildProcess process;
};

Playing ours(const adserver::AdServer& server)
{
    Host host(server);
    host.show();
    const Playing result = watch(host.process);
    host.close();
    return result;
}

/// MiB that a host holds after many videos more than after the first.
double growth(const adserver::AdServer& server)
{
    Host host(server);
    double first = 0;
    for (int video = 0; video < roundsOf(manyVideos); ++video) {
        host.show();
        std::this_thread::sleep_for(700ms);
        host.close();
        std::this_thread::sleep_for(500ms);
        if (video == 0)
            first = host.process.pssMiB();
    }
    return host.process.pssMiB() - first;
}

Playing bare()
{
    ChildProcess pipeline({programFolder() + "/bench-pipeline", VIRLO_CAMPAIGNS "/clips/helion-720p.mp4"});
    if (pipeline.readLine() != "playing")
        throw std::runtime_error("the bare pipeline does not play");
    return watch(pipeline);
}

} // namespace

/// A video of 1280×720 in a window of that size, on Qt Quick's software backend, its ring and reports
/// included, beside GStreamer alone with the same video.
void benchVideoProcess(Results& results)
{
    std::filesystem::remove_all(workFolder());
    adserver::AdServerOptions options;
    options.port = builtInPort;
    options.stateFolder = workFolder() / "server";
    adserver::AdServer server(options);
    server.addCampaign("bench-video", campaign().dump(), VIRLO_CAMPAIGNS);
    server.start();

    std::vector<double> resident;
    std::vector<double> bareResident;
    const Pair processor = alternate(
        rounds,
        [&] {
            const Playing playing = ours(server);
            resident.push_back(playing.resident);
            return playing.processorSeconds;
        },
        [&] {
            const Playing playing = bare();
            bareResident.push_back(playing.resident);
            return playing.processorSeconds;
        });
    const double tenSeconds = 10s / watched;
    results.addRatio("processor time of playing a 720p video", processor.ours, processor.bare, "s in 5 s",
                     1.6, true);
    results.addLimit("processor time of playing a 720p video", processor.ours * tenSeconds, "s in 10 s", 2);
    results.addLimit("resident memory of that over the bare pipeline",
                     median(resident) - median(bareResident), "MiB", 40);
    // What one video holds while its end is under way; the memory of twenty is several times that.
    results.addLimit("growth of PSS after 20 videos", growth(server), "MiB", 20);
    std::filesystem::remove_all(workFolder());
}
