#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

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
    testing::Values(WrongCampaign{"NoJSON", "{\"rules\": [}", "parse error at line 1"},
                    WrongCampaign{"NoRules", R"({"advertisement":{}})", "rules: is missing"},
                    WrongCampaign{"Misspelled", IN_ITEM(R"("impresionUrl":"/x")"),
                                  "advertisement.ads[0].impresionUrl: is no key known here"},
                    WrongCampaign{"Rating", IN_ITEM(R"("rating":"six")"),
                                  "advertisement.ads[0].rating: must be a number from 0 to 5"},
                    WrongCampaign{"MissingImage", IN_ITEM(R"("backgroundUrl":"nowhere.jpg")"),
                                  "advertisement.ads[0].backgroundUrl: there is no file "},
                    WrongCampaign{"SpaceInAddress", IN_ITEM(R"("clickUrl":"https://a b")"),
                                  "advertisement.ads[0].clickUrl: must be an address without spaces"},
                    WrongCampaign{"MissingDocument", IN_ITEM(R"("markupUrl":"/vast/none/2?tx={txid}")"),
                                  "advertisement.ads[0].markupUrl: there is no file "},
                    WrongCampaign{"RewardWithoutPoll", BESIDES(R"("rewards":{"a":{"secondsAfterClick":1}})"),
                                  "rewards.a: the item has no \"pollingUrl\""},
                    WrongCampaign{"Fault", BESIDES(R"("faults":[{"path":"/a","stallFor":1}])"),
                                  "faults[0]: stallFor: needs \"stallBodyAfter\" beside it"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Campaigns, AFolderThatIsNotThereStopsTheStart)
{
    adserver::AdServer server({.plainHTTP = true, .campaignsFolder = "/nowhere/at/all"});
    EXPECT_THROW(server.start(), std::runtime_error);
}
