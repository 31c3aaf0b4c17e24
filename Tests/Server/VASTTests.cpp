#include "ServerTest.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

using testing::HasSubstr;

namespace
{

class VAST : public ServerTest
{
protected:
    [[nodiscard]] std::string fetch(const std::string& path) const { return makeClient().Get(path)->body; }
};

/// What the expression's group finds in the text, each time.
std::vector<std::string> all(const std::string& text, const char* expression)
{
    const std::regex regex(expression);
    std::vector<std::string> found;
    for (std::sregex_iterator each(text.begin(), text.end(), regex); each != std::sregex_iterator(); ++each)
        found.push_back((*each)[1]);
    return found;
}

} // namespace

TEST_F(VAST, FillsInPlaceholdersAndServesAStepByItsOwnFileFirst)
{
    folder.write("campaigns/vast/chain.xml",
                 "<a>{origin}/vast/chain/{next}?tx={tx}&cb=[CB] {step} {step}</a>");
    folder.write("campaigns/vast/chain/1.xml", "<last/>");
    EXPECT_EQ(fetch("/vast/chain/3?tx=T%261"),
              "<a>" + server.baseURL() + "/vast/chain/2?tx=T%261&cb=[CB] 3 3</a>");
    EXPECT_EQ(fetch("/vast/chain/1"), "<last/>");
    EXPECT_THAT(fetch("/vast/chain"), HasSubstr("/vast/chain/0?tx=&cb"));
    for (const auto* none : {"/vast/", "/vast/other", "/vast/chain/0", "/vast/chain/x", "/vast/chain/1/",
                             "/vast/..", "/vast/%2e%2e%2fsummit", "/ping/chain", "/ping/other/start"})
        EXPECT_EQ(makeClient().Get(none)->status, 404) << none;
}

TEST_F(VAST, ATrackingURLIsLoggedWithItsQueryAsItWasSent)
{
    folder.write("campaigns/vast/one.xml", "<VAST/>");
    const auto response = makeClient().Get("/ping/one/ad/start?tx=T1&cb=[CACHEBUSTING]");
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->body, "");
    EXPECT_EQ(server.requests().back().query, "tx=T1&cb=[CACHEBUSTING]");
}

TEST_F(VAST, EveryShippedVideoCampaignLeadsToItsMediaFiles)
{
    const char* const shipped = std::getenv("AD_SERVER_CAMPAIGNS");
    ASSERT_NE(shipped, nullptr);
    std::filesystem::remove(folder.path("campaigns/summit.json"));
    std::filesystem::copy(shipped, folder.path("campaigns"), std::filesystem::copy_options::recursive);
    restart();
    ASSERT_EQ(server.campaignErrors(), std::vector<std::string>());
    openSession();

    const std::map<std::string, std::pair<int, std::size_t>> due{
        {"Video", {0, 3}},          {"VideoOverImage", {0, 3}}, {"VideoWebM", {0, 1}},
        {"VideoSlow", {0, 1}},      {"VideoQueue", {0, 3}},     {"VideoBars", {0, 2}},
        {"VideoEmpty", {0, 0}},     {"VideoWrapped1", {1, 3}},  {"VideoWrapped3", {3, 3}},
        {"VideoWrapped10", {10, 3}}};
    server.clearFaults();
    for (const auto& [placement, expected] : due) {
        auto document = fetch(path(advertisement(placement)["ads"][0]["markupUrl"]));
        int wrappers = 0;
        for (; document.find("<VASTAdTagURI>") != document.npos && wrappers < 20; ++wrappers)
            document =
                fetch(path(all(document, R"(VASTAdTagURI><!\[CDATA\[([^\]]*\[CACHEBUSTING\]))").at(0)));
        const auto files = all(document, R"(<MediaFile [^>]*><!\[CDATA\[([^\]]*))");
        EXPECT_EQ(std::pair(wrappers, files.size()), expected) << placement;
        for (const auto& file : files)
            EXPECT_EQ(makeClient().Head(path(file))->status, 200) << file;
        EXPECT_THAT(document, testing::Not(HasSubstr("{"))) << placement;
    }
}
