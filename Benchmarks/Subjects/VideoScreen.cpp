#include "Benchmarks.h"

#include "AdServer.h"
#include "GstMediaEngine.h"
#include "PlayerLayerView.h"
#include "QueuePlayer.h"
#include "URLSession.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdvertisement.h"

#include <QEventLoop>
#include <QQuickWindow>
#include <QTimer>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

namespace
{

using Clock = std::chrono::steady_clock;
using Video = std::shared_ptr<VIRLOAdVideoViewController>;

constexpr int rounds = 9;
constexpr std::chrono::milliseconds longest{10'000};

std::filesystem::path workFolder()
{
    return std::filesystem::temp_directory_path() / "virlo-bench-video-screen";
}

void serve(adserver::AdServer& server, const std::string& path, std::string body, const char* type)
{
    adserver::AdServerFault canned;
    canned.path = path;
    canned.status = 200;
    canned.body = std::move(body);
    canned.contentType = type;
    server.setFault(canned);
}

void serveVideo(adserver::AdServer& server)
{
    std::ifstream clip(VIRLO_CAMPAIGNS "/clips/helion-720p.mp4", std::ios::binary);
    serve(server, "/video.mp4",
          std::string(std::istreambuf_iterator<char>(clip), std::istreambuf_iterator<char>()), "video/mp4");
    serve(server, "/video.xml",
          "<VAST version=\"3.0\"><Ad id=\"bench\"><InLine><Creatives><Creative AdID=\"video\"><Linear>"
          "<Duration>00:00:08</Duration><MediaFiles><MediaFile width=\"1280\" height=\"720\"><![CDATA[" +
              server.baseURL() +
              "/video.mp4]]></MediaFile></MediaFiles></Linear></Creative></Creatives></InLine></Ad></VAST>",
          "text/xml");
}

void spin(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

class Stage
{
public:
    explicit Stage(const std::string& base)
        : m_api(VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString("https://localhost:1")))
        , m_markup(base + "/video.xml")
    {
        window.resize(1280, 720);
        window.show();
    }

    /// Ready, as a host gets it.
    Video preload()
    {
        const auto ad = VIRLOAdvertisement::initWithDictionary(
            {{"txid", "bench"}, {"type", "video"}, {"ads", {{{"cid", "bench"}, {"markupUrl", m_markup}}}}});
        QEventLoop loop;
        Video video;
        VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
            ad, m_api, [&](std::shared_ptr<VIRLOAdViewController> screen, const virlo::OptionalError&) {
                QMetaObject::invokeMethod(
                    &loop,
                    [&loop, &video, screen = std::move(screen)] {
                        video = std::dynamic_pointer_cast<VIRLOAdVideoViewController>(screen);
                        loop.quit();
                    },
                    Qt::QueuedConnection);
            });
        loop.exec();
        if (!video)
            throw std::runtime_error("there is no video screen");
        return video;
    }

    /// Shows it until the window has drawn a frame of the video.
    void showFirstFrame(const Video& video)
    {
        QEventLoop loop;
        QTimer::singleShot(longest, &loop, [&loop] { loop.exit(1); });
        auto& view = dynamic_cast<virlo::PlayerLayerView&>(video->view());
        const auto connection = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] {
            if (!view.videoRect().isEmpty())
                loop.quit();
        });
        VIRLOAdPresenter::present(video, &window);
        const int failed = loop.exec();
        QObject::disconnect(connection);
        if (failed != 0)
            throw std::runtime_error("no frame of the video comes");
    }

    void leave(const Video& video)
    {
        VIRLOAdPresenter::dismiss(video);
        spin(std::chrono::milliseconds(300)); // the pipeline's end is not to be measured with the next one
    }

    QQuickWindow window;

private:
    std::shared_ptr<VIRLOAdServerAPI> m_api;
    std::string m_markup;
};

} // namespace

/// In one process that has shown a video before: how soon a video is seen, and whether all of its frames
/// are.
void benchVideoScreen(Results& results)
{
    std::filesystem::remove_all(workFolder());
    adserver::AdServer server({.stateFolder = workFolder()});
    server.start();
    serveVideo(server);
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(server.authorityFile().string());
    virlo::MediaEngine::setMaker([]() -> virlo::MediaEngine* { return new virlo::GstMediaEngine; });
    Stage stage(server.baseURL());

    std::vector<double> preloaded;
    std::vector<double> fromDocument;
    for (int round = 0; round <= roundsOf(rounds); ++round) {
        Video video = stage.preload();
        spin(std::chrono::milliseconds(700)); // the video loads meanwhile
        const double shown = timed([&] { stage.showFirstFrame(video); }) * 1e3;
        stage.leave(video);
        const double asked = timed([&] {
                                 video = stage.preload();
                                 stage.showFirstFrame(video);
                             }) *
                             1e3;
        stage.leave(video);
        if (round == 0)
            continue; // sets GStreamer up
        preloaded.push_back(shown);
        fromDocument.push_back(asked);
    }
    results.addLimit("show of a preloaded video to its first frame, TLS", median(preloaded), "ms", 100);
    results.addLimit("VAST document asked for to the video's first frame, TLS", median(fromDocument), "ms",
                     100);

    const Video video = stage.preload();
    const auto item = video->videoPlayer()->currentItem();
    stage.showFirstFrame(video);
    const auto before = item->videoFrameCounts();
    spin(std::chrono::milliseconds(6000));
    const auto after = item->videoFrameCounts();
    stage.leave(video);
    if (after.arrived - before.arrived < 170)
        throw std::runtime_error("the video does not play");
    results.addLimit("frames of a 720p video dropped in 6 s (180 shown)",
                     static_cast<double>(after.late + after.unseen - before.late - before.unseen), "", 0);
    std::filesystem::remove_all(workFolder());
}
