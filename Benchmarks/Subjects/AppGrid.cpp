#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr int rounds = 3;
constexpr int heldLines = 75;               ///< 300 cells
constexpr std::uint16_t builtInPort = 8443; ///< of the base URL that the presets compile in

std::filesystem::path workFolder()
{
    return std::filesystem::temp_directory_path() / "virlo-bench-app-grid";
}

/// The icons of the shipped campaigns: 512 × 512.
std::vector<std::string> iconFiles()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(VIRLO_CAMPAIGNS "/images")) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("icon-"))
            files.push_back("images/" + name);
    }
    return files;
}

std::string campaign(const std::string& placement, int items, int perPage)
{
    auto ads = nlohmann::json::array();
    for (const std::string& icon : iconFiles())
        ads.push_back({{"cid", placement + '-' + std::to_string(ads.size())},
                       {"type", "appstore"},
                       {"title", "Bench"},
                       {"price", "Free"},
                       {"description", "Forty lantern isles, one boat, and a night that does not end."},
                       {"backgroundUrl", icon},
                       {"impressionUrl", "/ad/imp/{txid}/{cid}"},
                       {"actionButton", {{"actionType", "CLICK_TO_CONTENT"}, {"text", "Get"}}}});
    const nlohmann::json campaign = {{"rules", {{{"placement", placement}}}},
                                     {"generatedItems", {{"count", items}, {"perPage", perPage}}},
                                     {"advertisement", {{"type", "discovery"}, {"ads", std::move(ads)}}}};
    return campaign.dump();
}

struct Scrolled {
    double percentile99;
    double longest;
    double processorSeconds;
    double pss; ///< right after
};

Scrolled scroll(ChildProcess& process, int lines)
{
    const double before = process.processorSeconds();
    process.writeLine("scroll " + std::to_string(lines));
    std::istringstream words(process.readLine());
    std::string word;
    double middle = 0;
    Scrolled scrolled{};
    if (!(words >> word >> middle >> scrolled.percentile99 >> scrolled.longest) || word != "slid")
        throw std::runtime_error("nothing scrolls");
    scrolled.processorSeconds = process.processorSeconds() - before;
    scrolled.pss = process.pssMiB();
    return scrolled;
}

/// A host that shows a grid, its icons not yet in the store.
class Grid
{
public:
    Grid(const adserver::AdServer& server, const std::string& placement)
        : process({programFolder() + "/bench-host", server.authorityFile().string()},
                  {{"XDG_DATA_HOME", (workFolder() / "data").string()},
                   {"XDG_CACHE_HOME", (workFolder() / "cache").string()},
                   {"QT_QPA_PLATFORM", "offscreen"},
                   {"QT_QUICK_BACKEND", "software"}})
    {
        std::filesystem::remove_all(workFolder() / "cache");
        process.writeLine("show " + placement);
        std::istringstream words(process.readLine());
        std::string word;
        if (!(words >> word >> askedToPainted) || word != "painted")
            throw std::runtime_error("the bench host shows no grid");
        std::this_thread::sleep_for(1500ms);
    }

    ChildProcess process;
    double askedToPainted = 0;
};

} // namespace

/// An app grid in a window of 1920×1080 on Qt Quick's software backend, scrolled by a held key through 300
/// cells whose icons come in meanwhile, beside a GridView of like cells in Qt Quick alone.
void benchAppGrid(Results& results)
{
    std::filesystem::remove_all(workFolder());
    adserver::AdServerOptions options;
    options.port = builtInPort;
    options.stateFolder = workFolder() / "server";
    adserver::AdServer server(options);
    server.addCampaign("long", campaign("long", 400, 100), VIRLO_CAMPAIGNS);
    server.addCampaign("few", campaign("few", 100, 100), VIRLO_CAMPAIGNS);
    server.addCampaign("many", campaign("many", 10000, 100), VIRLO_CAMPAIGNS);
    server.start();

    std::vector<std::string> bareCommand{programFolder() + "/bare-grid", server.authorityFile().string(),
                                         "400"};
    for (const std::string& icon : iconFiles())
        bareCommand.push_back(server.baseURL() + "/campaigns/" + icon);

    std::vector<double> asked;
    std::vector<double> longest;
    std::vector<double> processor;
    std::vector<double> bareProcessor;
    std::vector<double> pss;
    std::vector<double> barePSS;
    const int lines = roundsOf(rounds) == 1 ? 15 : heldLines;
    const Pair percentile99 = alternate(
        rounds,
        [&] {
            Grid grid(server, "long");
            asked.push_back(grid.askedToPainted);
            const Scrolled scrolled = scroll(grid.process, lines);
            longest.push_back(scrolled.longest);
            processor.push_back(scrolled.processorSeconds);
            pss.push_back(scrolled.pss);
            return scrolled.percentile99;
        },
        [&] {
            ChildProcess bare(bareCommand,
                              {{"QT_QPA_PLATFORM", "offscreen"}, {"QT_QUICK_BACKEND", "software"}});
            if (bare.readLine() != "painted")
                throw std::runtime_error("the bare grid shows nothing");
            const Scrolled scrolled = scroll(bare, lines);
            bareProcessor.push_back(scrolled.processorSeconds);
            barePSS.push_back(scrolled.pss);
            return scrolled.percentile99;
        });
    results.addRatio("app grid, a key held through 300 cells: 99th percentile of the frames' intervals",
                     percentile99.ours, percentile99.bare, "ms", 1.2, true);
    results.addLimit("app grid, a key held through 300 cells: longest interval", median(longest), "ms", 33);
    results.addRatio("app grid, a key held through 300 cells: processor time", median(processor),
                     median(bareProcessor), "s", 1.4, true);
    results.addRatio("app grid: memory (PSS) right after 300 cells", median(pss), median(barePSS), "MiB", 1.3,
                     true);
    results.addLimit("app grid asked for to cells on the screen, TLS", median(asked), "ms", 400);

    const auto memoryAtTheEnd = [&](const std::string& placement, int toScroll) {
        Grid grid(server, placement);
        constexpr int atATime =
            500; // a held key scrolls them in less than the minute that a process may be silent
        for (int left = toScroll; left > 0; left -= atATime)
            scroll(grid.process, std::min(left, atATime));
        std::this_thread::sleep_for(2s);
        return grid.process.pssMiB();
    };
    const double few = memoryAtTheEnd("few", 25);
    const double many = memoryAtTheEnd("many", roundsOf(rounds) == 1 ? 50 : 2500);
    results.addRatio("app grid: memory (PSS) after 10,000 items, after 100", many, few, "MiB", 1.5, true);
    std::filesystem::remove_all(workFolder());
}
