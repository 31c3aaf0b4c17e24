#include "ServerTest.h"

#include <expat.h>
#include <gmock/gmock.h>

#include <cstdlib>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

/// What a client makes of a document: the text of every element by its path, apart for CDATA and plain text,
/// and the attributes of every element that has some.
struct ReadDocument {
    bool wellFormed = false;
    std::multimap<std::string, std::string> cdata;
    std::multimap<std::string, std::string> plain;
    std::multimap<std::string, std::map<std::string, std::string>> attributes;

    [[nodiscard]] static std::vector<std::string> at(const std::multimap<std::string, std::string>& texts,
                                                     const std::string& path)
    {
        std::vector<std::string> found;
        for (auto [text, end] = texts.equal_range(path); text != end; ++text)
            found.push_back(text->second);
        return found;
    }
};

class DocumentReading
{
public:
    static ReadDocument read(const std::string& xml)
    {
        DocumentReading reading;
        auto* const parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &reading);
        XML_SetElementHandler(parser, begin, end);
        XML_SetCharacterDataHandler(parser, text);
        XML_SetCdataSectionHandler(
            parser, [](void* self) { of(self).m_inCDATA = true; },
            [](void* self) { of(self).m_inCDATA = false; });
        reading.m_document.wellFormed =
            XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1) == XML_STATUS_OK;
        XML_ParserFree(parser);
        return reading.m_document;
    }

private:
    static DocumentReading& of(void* self) { return *static_cast<DocumentReading*>(self); }

    static void begin(void* self, const char* name, const char** attributes)
    {
        auto& reading = of(self);
        reading.m_path += (reading.m_path.empty() ? "" : "/") + std::string(name);
        reading.m_cdata.clear();
        reading.m_plain.clear();
        std::map<std::string, std::string> values;
        for (; *attributes; attributes += 2)
            values[attributes[0]] = attributes[1];
        if (!values.empty())
            reading.m_document.attributes.emplace(reading.m_path, values);
    }

    static void end(void* self, const char*)
    {
        auto& reading = of(self);
        if (!reading.m_cdata.empty())
            reading.m_document.cdata.emplace(reading.m_path, reading.m_cdata);
        if (reading.m_plain.find_first_not_of(" \n") != std::string::npos)
            reading.m_document.plain.emplace(reading.m_path, reading.m_plain);
        reading.m_path.resize(reading.m_path.find('/') == std::string::npos ? 0 : reading.m_path.rfind('/'));
        reading.m_cdata.clear();
        reading.m_plain.clear();
    }

    static void text(void* self, const char* text, int size)
    {
        auto& reading = of(self);
        (reading.m_inCDATA ? reading.m_cdata : reading.m_plain).append(text, static_cast<size_t>(size));
    }

    ReadDocument m_document;
    std::string m_path;
    std::string m_cdata;
    std::string m_plain;
    bool m_inCDATA = false;
};

class VAST : public ServerTest
{
protected:
    ReadDocument fetch(const std::string& path)
    {
        const auto response = makeClient().Get(path);
        EXPECT_TRUE(response);
        if (!response)
            return {};
        EXPECT_EQ(response->status, 200) << path;
        EXPECT_EQ(response->get_header_value("Content-Type"), "application/xml");
        return DocumentReading::read(response->body);
    }

    [[nodiscard]] int status(const std::string& path) const { return makeClient().Get(path)->status; }

    /// A campaign without an advertisement, but with these documents.
    void add(const std::string& documents)
    {
        server.addCampaign("documents",
                           R"({"rules":[{"placement":"-"}],"advertisement":{},"vast":)" + documents + "}");
    }
};

/// The server with the campaigns that are shipped.
class ShippedVAST : public VAST
{
protected:
    void SetUp() override
    {
        const char* const shipped = std::getenv("AD_SERVER_CAMPAIGNS");
        if (!shipped)
            GTEST_SKIP() << "AD_SERVER_CAMPAIGNS names no folder";
        std::filesystem::remove(folder.path("campaigns/summit.json"));
        std::filesystem::copy(shipped, folder.path("campaigns"), std::filesystem::copy_options::recursive);
        restart();
        ASSERT_EQ(server.campaignErrors(), std::vector<std::string>());
        openSession();
    }

    std::string documentOf(const std::string& placement, const std::string& type = {})
    {
        return path(advertisement(placement, type)["ads"][0]["markupUrl"]);
    }
};

constexpr auto wrapped = "VAST/Ad/Wrapper/VASTAdTagURI";
constexpr auto inlineFile = "VAST/Ad/InLine/Creatives/Creative/Linear/MediaFiles/MediaFile";
constexpr auto inlineTracking = "VAST/Ad/InLine/Creatives/Creative/Linear/TrackingEvents/Tracking";

} // namespace

TEST_F(VAST, ADocumentHoldsWhatItsCampaignSays)
{
    add(R"({"video": {"version": "2.0", "ads": [{"id": "a \"1\"", "system": "Salt & <Pepper>", "systemVersion": "4.2",
        "title": "Odd ]]> title & more", "impressions": 2, "creatives": [
          {"id": "long", "sequence": 3, "duration": 3725.25, "events": ["start", "complete"],
           "mediaFiles": [{"url": "picture.jpg", "type": "video/mp4", "width": 1920, "height": 1080}]},
          {"duration": 8, "mediaFiles": [{"url": "https://videos.example/a&b.webm", "type": "video/webm",
           "delivery": "streaming", "bitrate": 700}]}]}]}})");
    const auto document = fetch("/vast/video?tx=T%261");
    ASSERT_TRUE(document.wellFormed);
    EXPECT_THAT(document.at(document.plain, "VAST/Ad/InLine/AdSystem"), ElementsAre("Salt & <Pepper>"));
    EXPECT_THAT(document.at(document.cdata, "VAST/Ad/InLine/AdTitle"), ElementsAre("Odd ]]> title & more"));
    EXPECT_THAT(document.at(document.plain, "VAST/Ad/InLine/Creatives/Creative/Linear/Duration"),
                ElementsAre("01:02:05.250", "00:00:08"));
    EXPECT_THAT(document.at(document.cdata, inlineFile),
                ElementsAre(server.baseURL() + "/campaigns/picture.jpg", "https://videos.example/a&b.webm"));
    const auto ping = server.baseURL() + "/ping/video/a%20%221%22/";
    const std::string query = "?tx=T%261&cb=[CACHEBUSTING]&ts=[TIMESTAMP]";
    EXPECT_THAT(document.at(document.cdata, "VAST/Ad/InLine/Impression"),
                ElementsAre(ping + "impression" + query, ping + "impression-2" + query));
    const auto tracking = document.at(document.cdata, inlineTracking);
    ASSERT_GT(tracking.size(), 12U);
    EXPECT_EQ(tracking[0], ping + "long/start" + query);
    EXPECT_EQ(tracking[2], ping + "2/creativeView" + query);
    EXPECT_EQ(document.attributes.find("VAST/Ad/InLine/Creatives/Creative")->second,
              (std::map<std::string, std::string>{{"AdID", "long"}, {"sequence", "3"}}));
    EXPECT_EQ(document.attributes.find("VAST/Ad")->second.at("id"), "a \"1\"");
}

TEST_F(VAST, PingsAreAnsweredAndNotedWithTheirQueryAsItIs)
{
    add(R"({"video": {"ads": [{"id": "one", "creatives": [{"id": "long", "duration": 8}]}]}})");
    const auto document = fetch("/vast/video?tx=T1");
    const auto address = document.at(document.cdata, inlineTracking).at(1);
    const auto response = makeClient().Get(path(address));
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->body, "");
    const auto noted = server.requests().back();
    EXPECT_EQ(noted.path, "/ping/video/one/long/start");
    EXPECT_EQ(noted.query, "tx=T1&cb=[CACHEBUSTING]&ts=[TIMESTAMP]");
    EXPECT_EQ(noted.queryItem("tx"), "T1");
}

TEST_F(VAST, WhatNobodyHasIsNotFound)
{
    add(R"({"video": {"ads": []}, "chain": {"steps": 2, "ads": [{"id": "w", "wraps": "/vast/video"}]}})");
    EXPECT_TRUE(fetch("/vast/video").wellFormed);
    EXPECT_TRUE(fetch("/vast/chain/2").wellFormed);
    for (const auto* nowhere :
         {"/vast/", "/vast/other", "/vast/video/2", "/vast/chain/3", "/vast/chain/0", "/vast/chain/x",
          "/vast/chain/2/", "/ping/video", "/ping/other/a/start", "/ping//a"})
        EXPECT_EQ(status(nowhere), 404) << nowhere;
    EXPECT_EQ(status("/vast/video?tx=" + std::string(300, 'x')), 400);
    post("/vast/video", "{}", 405);
    post("/ping/video/a/start", "{}", 405);
}

TEST_F(VAST, AChainNamesOneStepAfterAnotherAndHandsTheTransactionOn)
{
    add(R"({"video": {"ads": [{"id": "video"}]},
            "chain": {"steps": 3, "ads": [{"id": "w{step}", "system": "Exchange {step}", "wraps": "/vast/video",
                      "creatives": [{"sequence": 1, "events": ["start"]}]}]}})");
    std::string next = "/vast/chain?tx=T1";
    for (const std::string step : {"1", "2", "3"}) {
        const auto document = fetch(next);
        EXPECT_THAT(document.at(document.plain, "VAST/Ad/Wrapper/AdSystem"), ElementsAre("Exchange " + step));
        EXPECT_THAT(document.at(document.cdata, "VAST/Ad/Wrapper/Impression"),
                    ElementsAre(HasSubstr("/ping/chain/w" + step + "/impression?tx=T1&")));
        EXPECT_TRUE(document.at(document.cdata, "VAST/Ad/Wrapper/AdTitle").empty());
        next = path(document.at(document.cdata, wrapped).at(0));
    }
    EXPECT_EQ(next, "/vast/video?tx=T1&cb=[CACHEBUSTING]");
    EXPECT_EQ(fetch(next).attributes.find("VAST/Ad")->second.at("id"), "video");
}

TEST_F(VAST, OnlyDocumentsOfThisServerAreHandedTheTransaction)
{
    add(R"({"out": {"ads": [{"id": "a", "wraps": "https://other.example/vast?x=1"}, {"id": "b", "wraps": "picture.jpg"}]}})");
    const auto document = fetch("/vast/out?tx=T1");
    EXPECT_THAT(document.at(document.cdata, wrapped),
                ElementsAre("https://other.example/vast?x=1", server.baseURL() + "/campaigns/picture.jpg"));
}

TEST_F(ShippedVAST, EveryChainEndsInTheVideoAfterItsWrappers)
{
    for (const auto& [placement, wrappers] : std::map<std::string, int>{
             {"Video", 0}, {"VideoWrapped1", 1}, {"VideoWrapped3", 3}, {"VideoWrapped10", 10}}) {
        auto document = fetch(documentOf(placement));
        int passed = 0;
        for (auto next = document.at(document.cdata, wrapped); !next.empty() && passed < 20; ++passed) {
            document = fetch(path(next[0]));
            next = document.at(document.cdata, wrapped);
        }
        EXPECT_EQ(passed, wrappers) << placement;
        EXPECT_EQ(document.at(document.cdata, inlineFile).size(), 3U) << placement;
    }
    EXPECT_EQ(documentOf("Anywhere", "video").substr(0, 17), "/vast/helion-video");
    EXPECT_EQ(advertisement("VideoOverImage")["type"], "engagement");
    EXPECT_THAT(documentOf("VideoOverImage"), StartsWith("/vast/helion-video?tx="));
}

TEST_F(ShippedVAST, EveryClipIsThereAndComesInParts)
{
    for (const auto* placement : {"Video", "VideoQueue", "VideoWebM", "VideoBars", "VideoSlow"}) {
        server.clearFaults();
        const auto document = fetch(documentOf(placement));
        const auto clips = document.at(document.cdata, inlineFile);
        EXPECT_FALSE(clips.empty()) << placement;
        for (const auto& clip : clips) {
            const auto response = makeClient().Get(path(clip), {{"Range", "bytes=4-11"}});
            ASSERT_TRUE(response);
            EXPECT_EQ(response->status, 206) << clip;
            const bool isWebM = clip.ends_with(".webm");
            EXPECT_EQ(response->get_header_value("Content-Type"), isWebM ? "video/webm" : "video/mp4");
            EXPECT_EQ(response->body.substr(0, 4) == "ftyp", !isWebM) << clip;
        }
    }
}

TEST_F(ShippedVAST, WhatIsMeantToFailFails)
{
    EXPECT_FALSE(fetch(documentOf("VideoBroken")).wellFormed);
    const auto deadEnd = fetch(documentOf("VideoDeadEnd"));
    EXPECT_EQ(status(path(deadEnd.at(deadEnd.cdata, wrapped).at(0))), 404);
    const auto loop = fetch(documentOf("VideoLoop"));
    EXPECT_THAT(path(loop.at(loop.cdata, wrapped).at(0)), StartsWith("/vast/video-loop?"));
    const auto two = fetch(documentOf("VideoTwoWrappers"));
    EXPECT_EQ(two.at(two.cdata, wrapped).size(), 2U);
    const auto none = fetch(documentOf("VideoEmpty"));
    EXPECT_TRUE(none.wellFormed);
    EXPECT_EQ(none.attributes.count("VAST/Ad"), 0U);
    const auto queue = fetch(documentOf("VideoQueue"));
    EXPECT_EQ(queue.attributes.count("VAST/Ad/InLine/Creatives/Creative"), 2U);
}
