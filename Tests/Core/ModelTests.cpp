#include "CoreTest.h"
#include "Exception.h"
#include "VIRLOAdController.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOMimeType.h"
#include "VIRLOSession.h"

#include <cmath>
#include <map>

namespace virlo::test
{
namespace
{

std::shared_ptr<VIRLOAdItem> item(const char* json)
{
    return VIRLOAdItem::initWithDictionary(JSON::parse(json));
}

std::shared_ptr<VIRLOAdvertisement> advertisement(const char* json)
{
    return VIRLOAdvertisement::initWithDictionary(JSON::parse(json));
}

std::optional<URL> url(const char* text)
{
    return URL::fromString(text);
}

TEST(AdItem, ReadsEveryKey)
{
    const auto read =
        item(R"({"cid":"c","type":"appstore","title":"t","category":"g","description":"d","price":"2 $",
        "impressionUrl":"https://a/i","clickUrl":"https://a/c","clickFallback":"https://a/f","clickTracker":"https://a/t",
        "backgroundUrl":"https://a/b","markupUrl":"https://a/m","pollingUrl":"https://a/p?x=[CACHEBUSTING]",
        "screenshots":["not a url","https://a/1",7,"https://a/2"],"currencyAmount":"12","currencyType":"gold",
        "rating":"4.5","reviews":"12 votes","actionButton":{"actionType":"CLICK_TO_APPSTORE","text":"Get","textRed":255,
        "backgroundGreen":510,"xPosition":100.5,"yPosition":"-20"},"format":"never read"})");
    EXPECT_EQ(read->identifier(), "c");
    EXPECT_EQ(read->type(), VIRLOAdItemType::AppStore);
    EXPECT_EQ(read->title(), "t");
    EXPECT_EQ(read->category(), "g");
    EXPECT_EQ(read->text(), "d");
    EXPECT_EQ(read->price(), "2 $");
    EXPECT_EQ(read->impressionURL(), url("https://a/i"));
    EXPECT_EQ(read->clickURL(), url("https://a/c"));
    EXPECT_EQ(read->clickFallback(), url("https://a/f"));
    EXPECT_EQ(read->clickTracker(), url("https://a/t"));
    EXPECT_EQ(read->backgroundURL(), url("https://a/b"));
    EXPECT_EQ(read->markupURL(), url("https://a/m"));
    EXPECT_EQ(read->activationCheckURL(), url("https://a/p?x=[CACHEBUSTING]"));
    EXPECT_EQ(read->screenshotsURLs(), (std::vector{*url("https://a/1"), *url("https://a/2")}));
    EXPECT_EQ(read->currencyAmount(), 12U);
    EXPECT_EQ(read->currencyType(), "gold");
    EXPECT_EQ(read->rating(), 4.5F);
    EXPECT_EQ(read->numberOfRatings(), 12);
    EXPECT_FALSE(read->format());
    EXPECT_FALSE(read->impressionMarked());
    EXPECT_EQ(read->description(), "<VIRLOAdItem: aid=c title=t>");

    const auto& button = read->actionButton();
    ASSERT_TRUE(button);
    EXPECT_EQ(button->actionType(), "CLICK_TO_APPSTORE");
    EXPECT_EQ(button->text(), "Get");
    EXPECT_EQ(button->textColor(), (Color{1, 0, 0, 1}));
    EXPECT_EQ(button->backgroundColor(), (Color{0, 2, 0, 1})) << "not clamped";
    EXPECT_EQ(button->xPosition(), 100.5);
    EXPECT_EQ(button->yPosition(), -20);
}

TEST(AdItem, IsEmptyWithoutKeysAndEqualsByIdentifier)
{
    const auto read = item(R"({"actionButton":{},"price":4.5})");
    EXPECT_FALSE(read->identifier() || read->title() || read->clickURL());
    EXPECT_EQ(read->price(), "4.5");
    EXPECT_EQ(read->actionButton()->textColor(), (Color{0, 0, 0, 1}));
    EXPECT_EQ(read->actionButton()->xPosition(), 0);
    EXPECT_EQ(read->hash(), 0U);
    EXPECT_FALSE(read->isEqual(*read)) << "an item without identifier equals none";
    EXPECT_EQ(item(R"({"type":"APPSTORE"})")->type(), VIRLOAdItemType::Unknown);

    EXPECT_TRUE(item(R"({"cid":"a","title":"1"})")->isEqual(*item(R"({"cid":"a","title":"2"})")));
    EXPECT_EQ(item(R"({"cid":"a","title":"1"})")->hash(), item(R"({"cid":"a","title":"2"})")->hash());
    EXPECT_FALSE(item(R"({"cid":"a"})")->isEqual(*item(R"({"cid":"A"})")));
}

TEST(Advertisement, ReadsEveryKey)
{
    const auto read =
        advertisement(R"({"txid":"x","timestamp":"Tue Mar 01 10:20:30 GMT 2016","validUntil":"tomorrow",
        "type":"discovery","moreAdsUrl":"https://a/more","secondsToSkip":5,"ads":[{"cid":"1"},"none",[],{"cid":"2"}]})");
    EXPECT_EQ(read->txId(), "x");
    EXPECT_EQ(read->date(), Date(std::chrono::seconds(1456827630)));
    EXPECT_FALSE(read->validUntil());
    EXPECT_EQ(read->type(), VIRLOAdvertisementType::Discovery);
    EXPECT_EQ(read->moreItemsURL(), url("https://a/more"));
    EXPECT_EQ(read->secondsToSkip(), 5U);
    ASSERT_EQ(read->items().size(), 2U) << "other elements are skipped";
    EXPECT_EQ(read->items()[1]->identifier(), "2");
    EXPECT_EQ(read->description(),
              "<VIRLOAdvertisement: txId=x (2016-03-01 10:20:30 +0000) numberOfItems=2>");
}

TEST(Advertisement, UpdateAppendsItemsAndReplacesTheURLOfMore)
{
    const auto read = advertisement(R"({"txid":"x","moreAdsUrl":"https://a/more","ads":[{"cid":"1"}]})");
    const auto before = read->items();
    read->updateWithDictionary(JSON::parse(R"({"txid":"other","type":"video","ads":[{"cid":"1"},"none"]})"));
    read->addItemsFromArray(before);
    EXPECT_EQ(before.size(), 1U) << "a copy";
    ASSERT_EQ(read->items().size(), 3U) << "the same item again";
    EXPECT_EQ(read->items()[2], before[0]) << "the same object";
    EXPECT_FALSE(read->moreItemsURL());
    EXPECT_EQ(read->txId(), "x");
    EXPECT_EQ(read->type(), VIRLOAdvertisementType::Any);
    read->updateWithDictionary({{"ads", std::vector<JSON>(12'000, JSON::object())}});
    EXPECT_EQ(read->numberOfItems(), 12'003U) << "without a limit";
}

TEST(Advertisement, TwoTypesShareAName)
{
    for (std::uint64_t value = 0; value < 8; ++value) {
        const auto type = VIRLOAdvertisementType{value};
        const auto expected = value == 2 ? VIRLOAdvertisementType::Discovery : type;
        EXPECT_EQ(VIRLOAdvertisement::typeByString(VIRLOAdvertisement::stringByType(type)), expected);
    }
    EXPECT_EQ(VIRLOAdvertisement::stringByType(VIRLOAdvertisementType::DiscoveryAlternative), "discovery");
    EXPECT_FALSE(VIRLOAdvertisement::stringByType(VIRLOAdvertisementType{8}));
    EXPECT_EQ(VIRLOAdvertisement::typeByString("Video"), VIRLOAdvertisementType::Any);
}

TEST(Advertisement, EqualsByTransactionWithinItsClass)
{
    struct Subclass : VIRLOAdvertisement {
        explicit Subclass(const JSON& dictionary) : VIRLOAdvertisement(dictionary) {}
    };

    const auto one = advertisement(R"({"txid":"x","ads":[{}]})");
    EXPECT_TRUE(one->isEqual(*advertisement(R"({"txid":"x"})")));
    EXPECT_FALSE(one->isEqual(Subclass(JSON{{"txid", "x"}})));
    EXPECT_FALSE(advertisement("{}")->isEqual(*advertisement("{}")));
}

/// Values of other types than a key has.
class WrongType : public testing::TestWithParam<const char*>
{
protected:
    const JSON wrong = JSON::parse(GetParam());
};

TEST_P(WrongType, LeavesAnItemsOtherKeysAndItsNumbersFinite)
{
    for (const char* key :
         {"cid", "type", "title", "category", "description", "actionButton", "price", "impressionUrl",
          "screenshots", "currencyAmount", "rating", "reviews", "pollingUrl"}) {
        JSON dictionary = {{"cid", "c"}, {"title", "t"}};
        dictionary[key] = wrong;
        const auto read = VIRLOAdItem::initWithDictionary(dictionary);
        EXPECT_TRUE(read->identifier() == "c" || std::string(key) == "cid") << key;
        EXPECT_TRUE(read->title() == "t" || std::string(key) == "title") << key;
        EXPECT_TRUE(std::isfinite(read->rating())) << key;
    }
    const auto button = VIRLOActionButton::initWithDictionary(
        {{"text", wrong}, {"textRed", wrong}, {"backgroundBlue", wrong}, {"xPosition", wrong}});
    for (const double number :
         {double{button->textColor().red}, double{button->backgroundColor().blue}, button->xPosition()})
        EXPECT_TRUE(std::isfinite(number));
}

TEST_P(WrongType, LeavesAnAdvertisementsItems)
{
    for (const char* key : {"txid", "timestamp", "validUntil", "type", "moreAdsUrl", "secondsToSkip"}) {
        JSON dictionary = {{"ads", {{{"cid", "1"}}}}};
        dictionary[key] = wrong;
        const auto read = VIRLOAdvertisement::initWithDictionary(dictionary);
        EXPECT_EQ(read->numberOfItems(), 1U) << key;
        EXPECT_FALSE(read->date() || read->validUntil()) << key;
        dictionary["ads"] = wrong;
        read->updateWithDictionary(dictionary);
        EXPECT_LE(read->numberOfItems(), 2U) << key;
    }
    EXPECT_EQ(VIRLOAdvertisement::initWithDictionary(wrong)->numberOfItems(), 0U) << "not even an object";
}

TEST_P(WrongType, MakesNoSession)
{
    JSON dictionary = {{"sessionId", "s"}, {"status", "x"}, {"timestamp", "2016-03-01T10:20:30.123Z"}};
    const auto session = VIRLOSession::initWithDictionary(dictionary);
    session->updateWithDictionary(wrong);
    EXPECT_FALSE(session->isActive() || session->state() || session->date());
    EXPECT_EQ(session->pingInterval(), 0);
    EXPECT_FALSE(VIRLOSession::initWithDictionary(wrong));
    dictionary["timestamp"] = wrong;
    EXPECT_FALSE(VIRLOSession::initWithDictionary(dictionary));
}

INSTANTIATE_TEST_SUITE_P(Values, WrongType,
                         testing::Values("null", "true", R"("")", R"("some text")", "7", "1e300", "-1e300",
                                         "18446744073709551615", R"([1,"a",null,[[]]])",
                                         R"({"cid":{"cid":[]}})"));

TEST(Misuse, RaisesItsText)
{
    const auto raised = [](void (*init)()) -> std::string {
        try {
            init();
        } catch (const Exception& exception) {
            return exception.name() + ": " + exception.reason();
        }
        return "nothing";
    };
    EXPECT_EQ(raised([] { VIRLOSession::init(); }), "NSInternalInconsistencyException: The only valid "
                                                    "initialiser for VIRLOSession is initWithDictionary:");
    EXPECT_EQ(raised([] { VIRLOAdController::init(); }),
              "Singleton: Use +[VIRLOAdController sharedAdController]");
}

TEST(MimeType, DependsOnTheFirstByteAlone)
{
    const std::map<std::string, std::string> types = {{"\xff", "image/jpeg"},
                                                      {"\x89PNG", "image/png"},
                                                      {"GIF", "image/gif"},
                                                      {"I", "image/tiff"},
                                                      {"M", "image/tiff"},
                                                      {"%PDF", "application/pdf"},
                                                      {"F", "text/plain"},
                                                      {"\xd0", "application/vnd"},
                                                      {"", "application/octet-stream"},
                                                      {"<svg", "application/octet-stream"}};
    for (const auto& [bytes, type] : types)
        EXPECT_EQ(VIRLOMimeType::mimeType(bytes), type) << bytes;
}

} // namespace
} // namespace virlo::test
