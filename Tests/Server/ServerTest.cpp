#include "ServerTest.h"

namespace
{

constexpr auto campaign = R"({
  "about": "Every field once",
  "rules": [{"placement": "AppLaunch"}, {"placement": "Pause", "type": "featured"}],
  "advertisement": {
    "validFor": 600, "type": "engagement", "secondsToSkip": 5, "moreAdsUrl": "/ad/more/{txid}/1",
    "ads": [{
      "cid": "summit/1", "type": "appstore", "title": "Summit", "category": "Racing", "description": "Race <up>",
      "price": "Free", "impressionUrl": "/ad/imp/{txid}/{cid}", "clickUrl": "/ad/store/{txid}/{cid}",
      "clickFallback": "https://store.example/summit", "clickTracker": "/ad/click/{txid}/{cid}",
      "backgroundUrl": "image.jpg", "screenshots": ["image.jpg"], "currencyAmount": "50",
      "currencyType": "coins", "rating": 4.5, "reviews": 12, "markupUrl": null,
      "pollingUrl": "/ad/poll/{txid}/{cid}",
      "actionButton": {"actionType": "CLICK_TO_APPSTORE", "text": "Play", "textRed": 255, "textGreen": 255,
        "textBlue": 255, "backgroundRed": 200, "backgroundGreen": 40, "backgroundBlue": 20,
        "xPosition": 1200, "yPosition": 800}}]
  },
  "morePages": [
    {"moreAdsUrl": "/ad/more/{txid}/2", "ads": [{"cid": "second"}, {"cid": "third"}]},
    {"ads": [{"cid": "fourth"}]}],
  "rewards": {"summit/1": {"secondsAfterClick": 5}}
})";

} // namespace

ServerTest::ServerTest() : server(options())
{
    folder.write("campaigns/summit.json", campaign);
    folder.write("campaigns/image.jpg", "0123456789");
    server.start();
    EXPECT_EQ(server.campaignErrors(), std::vector<std::string>());
    m_client = std::make_unique<httplib::Client>(makeClient());
}

adserver::AdServerOptions ServerTest::options()
{
    return {.stateFolder = folder.path("state"),
            .campaignsFolder = folder.path("campaigns"),
            .logFile = folder.path("requests.jsonl"),
            .pagePort = 0,
            .pingInterval = std::chrono::milliseconds(2500),
            .sessionLifetime = std::chrono::seconds(10),
            .clock = [this] { return m_time.load(); }};
}

httplib::Client ServerTest::makeClient() const
{
    httplib::Client client(server.baseURL());
    client.set_ca_cert_path(server.authorityFile().string());
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    client.set_follow_location(false);
    client.set_read_timeout(std::chrono::seconds(20));
    return client;
}

void ServerTest::restart()
{
    server.stop();
    server.start();
    m_client = std::make_unique<httplib::Client>(makeClient());
}

std::string ServerTest::openSession()
{
    m_session = post("/app/sess/com.example.game?state=start", "{}").value("sessionId", "");
    return m_session;
}

ServerTest::JSON ServerTest::read(const httplib::Result& result, int status)
{
    EXPECT_TRUE(result) << httplib::to_string(result.error());
    if (!result)
        return {};
    EXPECT_EQ(result->status, status) << result->body;
    EXPECT_TRUE(result->body.empty() || result->get_header_value("Content-Type") == "application/json");
    return result->body.empty() ? JSON() : JSON::parse(result->body, nullptr, false);
}

ServerTest::JSON ServerTest::get(const std::string& path, int status)
{
    return read(m_client->Get(path, sessionHeader()), status);
}

ServerTest::JSON ServerTest::post(const std::string& path, const std::string& body, int status)
{
    return read(m_client->Post(path, sessionHeader(), body, "application/json"), status);
}

ServerTest::JSON ServerTest::put(const std::string& path, const std::string& body, int status)
{
    return read(m_client->Put(path, sessionHeader(), body, "application/json"), status);
}

ServerTest::JSON ServerTest::remove(const std::string& path, int status)
{
    return read(m_client->Delete(path, sessionHeader()), status);
}

ServerTest::JSON ServerTest::advertisement(const std::string& placement, const std::string& type)
{
    return get("/ad/req?app=com.example.game&placement=" + placement + (type.empty() ? "" : "&type=" + type));
}

std::string ServerTest::path(const JSON& address) const
{
    const auto text = address.is_string() ? address.get<std::string>() : std::string();
    EXPECT_TRUE(text.starts_with(server.baseURL() + "/")) << text;
    return text.substr(std::min(text.size(), server.baseURL().size()));
}
