#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace
{

struct WrongCampaign {
    const char* name;
    const char* text;
    const char* reason;
};

class WrongCampaigns : public testing::TestWithParam<WrongCampaign>
{
};

} // namespace

TEST_P(WrongCampaigns, AreNamedWithKeyAndReason)
{
    const virlo::test::TemporaryFolder folder;
    folder.write("wrong.json", GetParam().text);
    folder.write("right.json", R"({"rules":[{"placement":"*"}],"advertisement":{"ads":[]}})");
    const auto errors = adserver::AdServer::checkCampaigns(folder.path());
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], testing::StartsWith(folder.path("wrong.json") + ": " + GetParam().reason));
}

#define IN_ITEM(item) R"({"rules":[{"placement":"*"}],"advertisement":{"ads":[{)" item "}]}}"
#define BESIDES(rest) R"({"rules":[{"placement":"*"}],"advertisement":{"ads":[{"cid":"a"}]},)" rest "}"

INSTANTIATE_TEST_SUITE_P(
    , WrongCampaigns,
    testing::Values(
        WrongCampaign{"NoJSON", "{\"rules\": [}", "parse error at line 1"},
        WrongCampaign{"NoRules", R"({"advertisement":{}})", "rules: is missing"},
        WrongCampaign{"EmptyRules", R"({"rules":[],"advertisement":{}})",
                      "rules: must have at least one rule"},
        WrongCampaign{"RuleWithoutPlacement", R"({"rules":[{}],"advertisement":{}})",
                      "rules[0].placement: is missing"},
        WrongCampaign{"UnknownType", R"({"rules":[{"placement":"*"}],"advertisement":{"type":"banner"}})",
                      "advertisement.type: must be one of \"any\""},
        WrongCampaign{"Misspelled", IN_ITEM(R"("impresionUrl":"/x")"),
                      "advertisement.ads[0].impresionUrl: is no key known here"},
        WrongCampaign{"NumberForText", IN_ITEM(R"("title":7)"), "advertisement.ads[0].title: must be a text"},
        WrongCampaign{"Rating", IN_ITEM(R"("rating":"six")"),
                      "advertisement.ads[0].rating: must be a number from 0 to 5"},
        WrongCampaign{"MissingPicture", IN_ITEM(R"("backgroundUrl":"nowhere.jpg")"),
                      "advertisement.ads[0].backgroundUrl: there is no file "},
        WrongCampaign{"SpaceInAddress", IN_ITEM(R"("clickUrl":"https://a b")"),
                      "advertisement.ads[0].clickUrl: must be an address without spaces"},
        WrongCampaign{"ButtonPosition", IN_ITEM(R"("actionButton":{"xPosition":5000})"),
                      "advertisement.ads[0].actionButton.xPosition: must be a number from 0 to 1920"},
        WrongCampaign{"ScreenshotsNoList", IN_ITEM(R"("screenshots":"a.jpg")"),
                      "advertisement.ads[0].screenshots: must be an array"},
        WrongCampaign{"RewardOfNobody", BESIDES(R"("rewards":{"b":{"secondsAfterClick":1}})"),
                      "rewards.b: is the \"cid\" of no item"},
        WrongCampaign{"RewardWithoutPoll", BESIDES(R"("rewards":{"a":{"secondsAfterClick":1}})"),
                      "rewards.a: the item has no \"pollingUrl\""},
        WrongCampaign{"Fault", BESIDES(R"("faults":[{"path":"/a","times":-1}])"),
                      "faults[0]: times: must be a whole number"},
        WrongCampaign{"FaultThatStallsNowhere", BESIDES(R"("faults":[{"path":"/a","stallFor":1}])"),
                      "faults[0]: stallFor: needs \"stallBodyAfter\" beside it"},
        WrongCampaign{"DocumentOfNobody", IN_ITEM(R"("markupUrl":"/vast/video?tx={txid}")"),
                      "advertisement.ads[0].markupUrl: no campaign has a VAST document \"video\""},
        WrongCampaign{"WrapperAroundNobody",
                      BESIDES(R"("vast":{"d":{"ads":[{"id":"a","wraps":"/vast/e/2"}]}})"),
                      "vast.d.ads[0].wraps: no campaign has a VAST document \"e\""},
        WrongCampaign{"DocumentName", BESIDES(R"("vast":{"a/b":{"ads":[]}})"),
                      "vast.a/b: a document's name consists of letters"},
        WrongCampaign{"DocumentKey", BESIDES(R"("vast":{"d":{"ad":[]}})"), "vast.d.ad: is no key known here"},
        WrongCampaign{"VASTAdWithoutID", BESIDES(R"("vast":{"d":{"ads":[{}]}})"),
                      "vast.d.ads[0].id: is missing"},
        WrongCampaign{"TitleOfAWrapper",
                      BESIDES(R"("vast":{"d":{"ads":[{"id":"a","title":"T","wraps":"/gone"}]}})"),
                      "vast.d.ads[0].title: a wrapper has no title"},
        WrongCampaign{"StepsToNowhere", BESIDES(R"("vast":{"d":{"steps":3,"ads":[{"id":"a"}]}})"),
                      "vast.d.steps: none of the document's ads wraps"},
        WrongCampaign{"MissingClip", BESIDES(R"("vast":{"d":{"ads":[{"id":"a","creatives":[{"mediaFiles":[
                          {"url":"no.mp4","type":"video/mp4"}]}]}]}})"),
                      "vast.d.ads[0].creatives[0].mediaFiles[0].url: there is no file "},
        WrongCampaign{"MediaFileWithoutType",
                      BESIDES(R"("vast":{"d":{"ads":[{"id":"a","creatives":[{"mediaFiles":[
                          {"url":"/a.mp4"}]}]}]}})"),
                      "vast.d.ads[0].creatives[0].mediaFiles[0].type: is missing"},
        WrongCampaign{"PageKey", BESIDES(R"("morePages":[{"type":"any"}])"),
                      "morePages[0].type: is no key known here"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Campaigns, AFolderThatIsNotThereStopsTheStart)
{
    adserver::AdServer server({.plainHTTP = true, .campaignsFolder = "/nowhere/at/all"});
    EXPECT_THROW(server.start(), std::runtime_error);
    EXPECT_THROW(server.addCampaign("x", "{}"), std::invalid_argument);
}

TEST(Campaigns, NameEachOthersDocumentsButHaveNoneTwice)
{
    const virlo::test::TemporaryFolder folder;
    const auto write = [&](const char* name, const char* documents) {
        folder.write(name, std::string(R"({"rules":[{"placement":"*"}],"advertisement":{},"vast":)") +
                               documents + "}");
    };
    const auto wraps = R"({"a":{"ads":[{"id":"1","wraps":"/vast/b"}]}})";
    write("1.json", wraps);
    write("2.json", R"({"b":{"ads":[{"id":"1","wraps":"/vast/c/1?x"}]}})");
    write("3.json", R"({"c":{"ads":[]}})");
    EXPECT_TRUE(adserver::AdServer::checkCampaigns(folder.path()).empty());

    write("4.json", R"({"d":{},"a":{}})");
    EXPECT_THAT(adserver::AdServer::checkCampaigns(folder.path()),
                testing::ElementsAre(folder.path("4.json") +
                                     ": vast.a: another campaign has a document of that name"));

    // What goes takes the documents with it that others need.
    write("3.json", R"({"c":{"adds":[]}})");
    write("4.json", R"({"e":{}})");
    EXPECT_EQ(adserver::AdServer::checkCampaigns(folder.path()).size(), 3U);

    adserver::AdServer server({.plainHTTP = true});
    const auto text = std::string(R"({"rules":[{"placement":"*"}],"advertisement":{},"vast":)") + wraps + "}";
    EXPECT_THROW(server.addCampaign("a", text), std::invalid_argument);
}

TEST(Campaigns, ThoseShippedAreRightAndUseEveryKey)
{
    const char* const shipped = std::getenv("AD_SERVER_CAMPAIGNS");
    if (!shipped)
        GTEST_SKIP() << "AD_SERVER_CAMPAIGNS names no folder";
    EXPECT_EQ(adserver::AdServer::checkCampaigns(shipped), std::vector<std::string>());

    std::string all;
    for (const auto& entry : std::filesystem::directory_iterator(shipped))
        if (entry.path().extension() == ".json")
            all += std::string(std::istreambuf_iterator<char>(std::ifstream(entry.path()).rdbuf()), {});
    for (const auto* key :
         {"txid",         "timestamp",     "validUntil",    "type",          "moreAdsUrl",  "secondsToSkip",
          "cid",          "title",         "category",      "description",   "price",       "impressionUrl",
          "clickUrl",     "clickFallback", "clickTracker",  "backgroundUrl", "screenshots", "currencyAmount",
          "currencyType", "rating",        "reviews",       "markupUrl",     "pollingUrl",  "actionType",
          "text",         "textRed",       "backgroundRed", "xPosition",     "yPosition",   "morePages",
          "rewards",      "vast",          "steps",         "broken",        "wraps",       "impressions",
          "sequence",     "duration",      "mediaFiles"})
        EXPECT_THAT(all, testing::HasSubstr('"' + std::string(key) + '"'));
    for (const auto* action :
         {"CLICK_TO_APPSTORE", "CLICK_TO_CONTENT", "CLICK_TO_EMAIL", "CLICK_TO_CALL", "CLICK_TO_SMS"})
        EXPECT_THAT(all, testing::HasSubstr(action));
}
