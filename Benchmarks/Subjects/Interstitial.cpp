#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace
{

using namespace std::chrono_literals;

constexpr int rounds = 3;
constexpr int slideSeconds = 10;
constexpr int few = 8;
constexpr int many = 60;
constexpr std::uint16_t builtInPort = 8443; ///< of the base URL that the presets compile in

std::filesystem::path workFolder()
{
    return std::filesystem::temp_directory_path() / "virlo-bench-interstitial";
}

std::filesystem::path imageFolder()
{
    return workFolder() / "images";
}

nlohmann::json campaign(int screenshots)
{
    const std::string identifier = "page-" + std::to_string(screenshots);
    nlohmann::json item = {{"cid", identifier},
                           {"type", "content"},
                           {"title", "Bench"},
                           {"price", "Free"},
                           {"rating", 4.5},
                           {"reviews", 1234},
                           {"description", "Forty lantern isles, one boat."},
                           {"backgroundUrl", "bench-0.jpg"},
                           {"actionButton", {{"actionType", "CLICK_TO_CONTENT"}, {"text", "Get"}}}};
    for (int number = 1; number <= screenshots; ++number)
        item["screenshots"].push_back("bench-" + std::to_string(number) + ".jpg");
    return {{"rules", {{{"placement", identifier}}}},
            {"advertisement", {{"type", "interstitial"}, {"ads", {std::move(item)}}}}};
}

struct Slid {
    double percentile99;
    double longest;
    double processorSeconds;
    double pss; ///< at rest, after the slide
};

Slid slide(ChildProcess& process)
{
    const int seconds = roundsOf(slideSeconds) == 1 ? 2 : slideSeconds;
    const double before = process.processorSeconds();
    process.writeLine("slide " + std::to_string(seconds));
    std::istringstream words(process.readLine());
    std::string word;
    double middle = 0;
    Slid slid{};
    if (!(words >> word >> middle >> slid.percentile99 >> slid.longest) || word != "slid")
        throw std::runtime_error("nothing slides");
    slid.processorSeconds = process.processorSeconds() - before;
    std::this_thread::sleep_for(2s);
    slid.pss = process.pssMiB();
    return slid;
}

struct Shown {
    double askedToPainted;
    double presentedToPainted;
};

/// A host that shows the page with that many screenshots, the focus on the carousel.
class Page
{
public:
    Page(const adserver::AdServer& server, int screenshots)
        : process({programFolder() + "/bench-host", server.authorityFile().string()},
                  {{"XDG_DATA_HOME", (workFolder() / "data").string()},
                   {"XDG_CACHE_HOME", (workFolder() / "cache").string()},
                   {"QT_QPA_PLATFORM", "offscreen"},
                   {"QT_QUICK_BACKEND", "software"}})
    {
        process.writeLine("show page-" + std::to_string(screenshots));
        std::istringstream words(process.readLine());
        std::string word;
        double stall = 0;
        if (!(words >> word >> shown.askedToPainted >> stall >> shown.presentedToPainted) ||
            word != "painted")
            throw std::runtime_error("the bench host shows no page");
        process.writeLine("down");
        std::this_thread::sleep_for(1500ms);
    }

    ChildProcess process;
    Shown shown{};
};

Slid bareSlide(int screenshots)
{
    ChildProcess bare(
        {programFolder() + "/bare-carousel", imageFolder().string(), std::to_string(screenshots)},
        {{"QT_QPA_PLATFORM", "offscreen"}, {"QT_QUICK_BACKEND", "software"}});
    if (bare.readLine() != "painted")
        throw std::runtime_error("the bare carousel shows nothing");
    return slide(bare);
}

} // namespace

/// An app's page in a window of 1920×1080 on Qt Quick's software backend, its carousel sliding without a
/// rest, beside a strip of the same images in Qt Quick alone.
void benchInterstitial(Results& results)
{
    std::filesystem::remove_all(workFolder());
    ChildProcess painter(
        {programFolder() + "/bench-inside", "images", imageFolder().string(), std::to_string(many)});
    if (painter.awaitEnd() != 0)
        throw std::runtime_error("no images are drawn");
    adserver::AdServerOptions options;
    options.port = builtInPort;
    options.stateFolder = workFolder() / "server";
    adserver::AdServer server(options);
    for (const int screenshots : {few, many})
        server.addCampaign("page-" + std::to_string(screenshots), campaign(screenshots).dump(),
                           imageFolder());
    server.start();

    std::vector<double> asked;
    std::vector<double> presented;
    for (const int screenshots : {few, many}) {
        std::vector<double> longest;
        std::vector<double> processor;
        std::vector<double> bareProcessor;
        std::vector<double> pss;
        std::vector<double> barePSS;
        const Pair percentile99 = alternate(
            rounds,
            [&] {
                Page page(server, screenshots);
                if (screenshots == few) {
                    asked.push_back(page.shown.askedToPainted);
                    presented.push_back(page.shown.presentedToPainted);
                }
                const Slid slid = slide(page.process);
                longest.push_back(slid.longest);
                processor.push_back(slid.processorSeconds);
                pss.push_back(slid.pss);
                return slid.percentile99;
            },
            [&] {
                const Slid slid = bareSlide(screenshots);
                bareProcessor.push_back(slid.processorSeconds);
                barePSS.push_back(slid.pss);
                return slid.percentile99;
            });
        const std::string with = ", " + std::to_string(screenshots) + " screenshots";
        results.addRatio("sliding: 99th percentile of the frames' intervals" + with, percentile99.ours,
                         percentile99.bare, "ms", 1.2, true);
        results.addLimit("sliding: longest interval between frames" + with, median(longest), "ms", 33);
        results.addRatio("sliding: processor time" + with, median(processor), median(bareProcessor),
                         "s in 10 s", 1.4, true);
        results.addLimit("sliding: processor time" + with, median(processor), "s in 10 s", 1.8);
        results.addRatio("memory (PSS) after sliding" + with, median(pss), median(barePSS), "MiB", 1.3, true);
    }
    results.addLimit("page asked for to painted, 8 screenshots, TLS", median(asked), "ms", 400);
    results.addLimit("ready page presented to first frame, 1920x1080", median(presented), "ms", 100);
    std::filesystem::remove_all(workFolder());
}
