#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr int rounds = 9;
constexpr int manyAds = 100;
constexpr std::uint16_t builtInPort = 8443; ///< of the base URL that the presets compile in

std::filesystem::path workFolder()
{
    return std::filesystem::temp_directory_path() / "virlo-bench-host-process";
}

nlohmann::json campaign(int number)
{
    const std::string identifier = "bench-" + std::to_string(number);
    return {{"rules", {{{"placement", number == 0 ? "*" : identifier}}}},
            {"advertisement",
             {{"type", "engagement"},
              {"secondsToSkip", 0},
              {"ads",
               {{{"cid", identifier},
                 {"type", "content"},
                 {"title", identifier},
                 {"impressionUrl", "/bench/impression"},
                 {"backgroundUrl", identifier + ".jpg"},
                 {"actionButton",
                  {{"actionType", "CLICK_TO_CONTENT"},
                   {"text", "Look"},
                   {"xPosition", 1200},
                   {"yPosition", 800}}}}}}}}};
}

/// The ad server on the port that the library was built for, with as many ads as asked for.
class Stage
{
public:
    explicit Stage(int ads) : m_server(options())
    {
        ChildProcess painter(
            {programFolder() + "/bench-inside", "images", images().string(), std::to_string(ads)});
        if (painter.awaitEnd() != 0)
            throw std::runtime_error("no images are drawn");
        for (int number = ads; number >= 0; --number)
            m_server.addCampaign("bench-" + std::to_string(number), campaign(number).dump(), images());
        adserver::AdServerFault accepted;
        accepted.path = "/bench/impression";
        accepted.status = 200;
        accepted.body = "{}";
        m_server.setFault(accepted);
        m_server.start();
    }

    adserver::AdServer& server() { return m_server; }

    std::map<std::string, std::string> environment() const
    {
        return {{"XDG_DATA_HOME", (workFolder() / "data").string()},
                {"XDG_CACHE_HOME", (workFolder() / "cache").string()},
                {"QT_QPA_PLATFORM", "offscreen"},
                {"QT_QUICK_BACKEND", "software"}};
    }

    static void forgetImages() { std::filesystem::remove_all(workFolder() / "cache"); }

private:
    static std::filesystem::path images() { return workFolder() / "images"; }

    static adserver::AdServerOptions options()
    {
        adserver::AdServerOptions result;
        result.port = builtInPort;
        result.stateFolder = workFolder() / "server";
        return result;
    }

    adserver::AdServer m_server;
};

/// From the start of the demo host to the ad server's hearing of the impression, which a screen reports once
/// its first frame has been shown: an upper bound of the time to that frame.
double startToImpression(Stage& stage)
{
    Stage::forgetImages();
    stage.server().clearRequests();
    std::optional<ChildProcess> host; // its end is not measured
    return timed([&] {
        host.emplace(std::vector<std::string>{programFolder() + "/tv-host", "--authority",
                                              stage.server().authorityFile().string()},
                     stage.environment());
        if (!stage.server().waitForRequests("POST", "/bench/impression", 1, 20s))
            throw std::runtime_error("the demo host shows no ad");
    });
}

/// From the start of a program that only fetches and shows the same image to its first frame, and the memory
/// that it holds while nothing moves.
struct Bare {
    double seconds;
    double pss;
};

Bare bareHost(Stage& stage, bool measuresMemory)
{
    Bare bare{};
    std::optional<ChildProcess> host;
    bare.seconds = timed([&] {
        host.emplace(std::vector<std::string>{programFolder() + "/bare-host",
                                              stage.server().baseURL() + "/campaigns/bench-0.jpg",
                                              stage.server().authorityFile().string()},
                     stage.environment());
        if (host->readLine() != "painted")
            throw std::runtime_error("the bare host shows no image");
    });
    if (measuresMemory) {
        std::this_thread::sleep_for(4s);
        bare.pss = host->pssMiB();
    }
    return bare;
}

class BenchHost
{
public:
    explicit BenchHost(Stage& stage)
        : m_process({programFolder() + "/bench-host", stage.server().authorityFile().string()},
                    stage.environment())
    {
    }

    struct Painted {
        double milliseconds;
        double stall;
    };

    Painted show(int number)
    {
        m_process.writeLine("show bench-" + std::to_string(number));
        const std::string line = m_process.readLine();
        std::istringstream words(line);
        std::string word;
        Painted painted{};
        if (!(words >> word >> painted.milliseconds >> painted.stall) || word != "painted")
            throw std::runtime_error("the bench host says " + line);
        return painted;
    }

    void close()
    {
        m_process.writeLine("close");
        if (m_process.readLine() != "closed")
            throw std::runtime_error("the bench host does not close its ad");
    }

    ChildProcess& process() { return m_process; }

private:
    ChildProcess m_process;
};

/// Returns the bare host's memory.
double measureStart(Results& results)
{
    Stage stage(0);
    startToImpression(stage); // the device's first start, which registers the install
    const Pair start = alternate(
        rounds, [&] { return startToImpression(stage); }, [&] { return bareHost(stage, false).seconds; });
    results.addRatio("process start of the demo host to the first frame of an ad, TLS", start.ours * 1e3,
                     start.bare * 1e3, "ms", 1.1, true);
    return bareHost(stage, true).pss;
}

void measureRunning(Results& results, double barePss)
{
    const int ads = roundsOf(manyAds) == 1 ? 2 : manyAds;
    Stage stage(ads);
    Stage::forgetImages();
    BenchHost host(stage);
    std::vector<double> painted;
    std::vector<double> stalls;
    int number = 0;
    double first = 0;
    while (number < ads) {
        const BenchHost::Painted shown = host.show(++number);
        std::this_thread::sleep_for(60ms);
        if (number == 1) {
            // Seconds after, the close symbol has faded in and nothing moves any more.
            std::this_thread::sleep_for(4s);
            results.addRatio("memory (PSS) while an image ad is shown", host.process().pssMiB(), barePss,
                             "MiB", 1.25, true);
            const double before = host.process().processorSeconds();
            std::this_thread::sleep_for(5s);
            results.addLimit("processor time in 5 s while an image ad is shown",
                             host.process().processorSeconds() - before, "s", 0.02);
        } else {
            painted.push_back(shown.milliseconds);
            stalls.push_back(shown.stall);
        }
        host.close();
        if (number == 1) {
            std::this_thread::sleep_for(300ms);
            first = host.process().pssMiB();
        }
    }
    std::this_thread::sleep_for(300ms);
    results.addLimit("ad asked for in the running host to painted, not cached, TLS", median(painted), "ms",
                     50);
    results.addLimit("longest stall of the main thread while an ad loads", median(stalls), "ms", 16);
    results.addLimit("growth of PSS after 100 different image ads", host.process().pssMiB() - first, "MiB",
                     2);
}

} // namespace

void benchHostProcess(Results& results)
{
    std::filesystem::remove_all(workFolder());
    measureRunning(results, measureStart(results));
    std::filesystem::remove_all(workFolder());
}
