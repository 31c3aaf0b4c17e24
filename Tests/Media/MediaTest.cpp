#include "MediaTest.h"

#include "GstMediaEngine.h"
#include "Settle.h"
#include "TestSound.h"
#include "URLSession.h"

#include <fstream>
#include <optional>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;

/// As in production, only shorter where a test would wait for the limit.
const PlaybackLimits testLimits{.timeout = 5000ms, .silence = 6000ms, .retryPause = 50ms};

class MediaServer : public testing::Environment
{
public:
    void SetUp() override
    {
        TestSound::install();
        MediaEngine::setMaker([]() -> MediaEngine* { return new GstMediaEngine(testLimits); });
        m_folder.emplace();
        m_folder->write("clips/placeholder.txt", "");
        server.emplace(adserver::AdServerOptions{.stateFolder = m_folder->path("server"),
                                                 .campaignsFolder = m_folder->path("clips")});
        server->start();
        URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(server->authorityFile().string());
    }

    void TearDown() override
    {
        server.reset();
        m_folder.reset();
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        m_folder->write("clips/" + name, bytes);
    }

    std::optional<adserver::AdServer> server;

private:
    std::optional<TemporaryFolder> m_folder;
};

MediaServer& mediaServer()
{
    static auto* const shared = static_cast<MediaServer*>(testing::AddGlobalTestEnvironment(new MediaServer));
    return *shared;
}

[[maybe_unused]] const MediaServer& atMediaStart = mediaServer();

std::string textOf(const QueuePlayer::Value& value)
{
    if (const bool* const flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    if (const double* const rate = std::get_if<double>(&value))
        return std::to_string(static_cast<int>(*rate));
    return "none";
}

} // namespace

MediaTest::MediaTest()
{
    server().reset();
}

MediaTest::~MediaTest()
{
    m_observers.clear();
    m_notifications.clear();
    player.reset();
    EXPECT_TRUE(GstMediaEngine::drain(Seconds(20)));
    settleAll();
}

adserver::AdServer& MediaTest::server()
{
    return *mediaServer().server;
}

std::string MediaTest::path(const std::string& name)
{
    return "/campaigns/" + name;
}

std::shared_ptr<PlayerItem> MediaTest::served(const Clip& clip)
{
    return served("clip-" + std::to_string(m_clips++), clip);
}

void MediaTest::serve(const std::string& name, const std::string& bytes)
{
    mediaServer().write(name, bytes);
}

std::shared_ptr<PlayerItem> MediaTest::served(const std::string& name, const Clip& clip)
{
    serve(name, clipBytes(clip));
    return atServer(name);
}

std::shared_ptr<PlayerItem> MediaTest::atServer(const std::string& name)
{
    return PlayerItem::playerItemWithURL(*URL::fromString(server().baseURL() + path(name)));
}

std::string MediaTest::nameOf(const void* item) const
{
    for (std::size_t index = 0; index < m_items.size(); ++index) {
        if (m_items[index].get() == item)
            return std::to_string(index);
    }
    return "none";
}

std::shared_ptr<QueuePlayer> MediaTest::make(const QueuePlayer::Items& items)
{
    m_observers.clear();
    m_notifications.clear();
    log.clear();
    m_items = items;
    player = QueuePlayer::queuePlayerWithItems(items);
    const auto observe = [this](const char* keyPath,
                                std::function<void(const QueuePlayer::Change&)> observer) {
        m_observers.push_back(player->addObserverForKeyPath(keyPath, std::move(observer)));
    };
    observe(QueuePlayer::currentItemKeyPath, [this](const auto& change) {
        const auto* const item = std::get_if<std::shared_ptr<PlayerItem>>(&change.newValue);
        log.push_back("item " + (item != nullptr ? nameOf(item->get()) : "none"));
    });
    observe(QueuePlayer::rateKeyPath,
            [this](const auto& change) { log.push_back("rate " + textOf(change.newValue)); });
    observe(QueuePlayer::playbackLikelyToKeepUpKeyPath,
            [this](const auto& change) { log.push_back("keepup " + textOf(change.newValue)); });
    const std::pair<const char*, const char*> names[] = {
        {PlayerItem::didPlayToEndTimeNotification, "ended "},
        {PlayerItem::failedToPlayToEndTimeNotification, "failed "},
        {PlayerItem::playbackStalledNotification, "stalled "}};
    for (const auto& [name, word] : names) {
        m_notifications.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this, word = std::string(word)](const Notification& notification) {
                log.push_back(word + nameOf(notification.object));
            }));
    }
    return player;
}

std::shared_ptr<QueuePlayer> MediaTest::play(const QueuePlayer::Items& items)
{
    make(items)->play();
    return player;
}

bool MediaTest::runsOut(Seconds limit)
{
    // An item that fails before the player's first step is never reported as waiting.
    return settle([this] { return !log.empty() && (log.back() == "keepup none" || log.back() == "rate 0"); },
                  limit);
}

std::vector<std::string> MediaTest::ends() const
{
    std::vector<std::string> result;
    for (const std::string& line : log) {
        if (!line.starts_with("keepup") && !line.starts_with("rate"))
            result.push_back(line);
    }
    return result;
}

} // namespace virlo::test
