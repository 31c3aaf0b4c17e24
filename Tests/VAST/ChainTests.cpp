#include "NotificationCenter.h"
#include "Settle.h"
#include "TestClock.h"
#include "URLSession.h"
#include "VASTServer.h"
#include "VASTText.h"
#include "VIRLOConstans.h"
#include "VIRLOVASTDocumentLoader.h"
#include "VIRLOVASTWrapperAd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>

namespace virlo::test
{
namespace
{

class ChainTest : public VASTServer
{
protected:
    /// `/COUNT.xml` to `/1.xml` are wrappers, each pointing to the next; `/0.xml` is the end.
    void serveChain(int count)
    {
        serve("/0.xml", vast(inlineAd("end", impression("http://end/"))));
        for (int number = 1; number <= count; ++number)
            serve("/" + std::to_string(number) + ".xml",
                  vast(wrapperAd("w", url("/" + std::to_string(number - 1) + ".xml"),
                                 impression("http://w/" + std::to_string(number)))));
    }
};

TEST_F(ChainTest, EndsInTheInlineAdWithTheImpressionsOfAll)
{
    serveChain(3);
    const Report report = parse(url("/3.xml"));
    EXPECT_FALSE(report.error);
    EXPECT_EQ(report.ad().type(), "InLine");
    EXPECT_EQ(impressionsOf(report.ad()), "http://end/ http://w/1 http://w/2 http://w/3");
}

TEST_F(ChainTest, KeepsTheWrapperBesideTheErrorOfItsTarget)
{
    serve("/w.xml", vast(wrapperAd("w", url("/empty.xml"), impression("http://w/"))));
    serve("/empty.xml", vast(""));
    const Report empty = parse(url("/w.xml"));
    EXPECT_EQ(empty.ad().type(), "Wrapper");
    EXPECT_EQ(impressionsOf(empty.ad()), "http://w/");
    ASSERT_TRUE(empty.error);
    EXPECT_EQ(empty.error->userInfo["Reason"], "No video is available.");

    server.setFault({.path = "/empty.xml", .status = 500});
    const Report failed = parse(url("/w.xml"));
    EXPECT_EQ(failed.ad().type(), "Wrapper");
    EXPECT_EQ(failed.code(), 500);
}

TEST_F(ChainTest, KeepsAWrapperWithoutATargetWithoutAnError)
{
    serve("/w.xml", vast(wrapperAd("w", "no URL", impression("http://w/"))));
    serve("/outer.xml", vast(wrapperAd("o", url("/w.xml"), impression("http://o/"))));
    const Report report = parse(url("/w.xml"));
    EXPECT_FALSE(report.error);
    EXPECT_EQ(report.ad().type(), "Wrapper");
    // Such a wrapper is an ad like any other to the wrapper before it.
    const Report outer = parse(url("/outer.xml"));
    EXPECT_FALSE(outer.error);
    EXPECT_EQ(impressionsOf(outer.ad()), "http://w/ http://o/");
}

TEST_F(ChainTest, ReplacesTheFirstAdByEveryResultTheLaterOneWinning)
{
    using namespace std::chrono_literals;
    serve("/two.xml", vast(inlineAd("own", "") + wrapperAd("w1", url("/slow.xml"), impression("http://w1/")) +
                           wrapperAd("w2", url("/fast.xml"), impression("http://w2/"))));
    serve("/fast.xml", vast(inlineAd("fast", "")));
    server.setFault({.path = "/slow.xml", .delay = 300ms, .body = vast(inlineAd("slow", ""))});
    const Report report = parse(url("/two.xml"));
    EXPECT_FALSE(report.error);
    ASSERT_TRUE(report.ads);
    ASSERT_EQ(report.ads->size(), 3U);
    EXPECT_EQ((*report.ads)[0]->identifier(), "slow");
    EXPECT_EQ(impressionsOf(*(*report.ads)[0]), "http://w1/");
    EXPECT_EQ((*report.ads)[1]->identifier(), "w1");
    EXPECT_EQ((*report.ads)[2]->identifier(), "w2");

    // A wrapper that another result has replaced still delivers its own.
    serve("/first.xml", vast(wrapperAd("w1", url("/slow.xml"), impression("http://w1/")) +
                             wrapperAd("w2", url("/fast.xml"))));
    const Report first = parse(url("/first.xml"));
    ASSERT_TRUE(first.ads);
    EXPECT_EQ(impressionsOf(*first.ads->front()), "http://w1/");
}

TEST_F(ChainTest, FollowsNoMoreWrappersThanTheLimit)
{
    serveChain(3);
    VIRLOVASTXMLParser::setWrapperLimit(2);
    EXPECT_FALSE(parse(url("/2.xml")).error);
    const Report report = parse(url("/3.xml"));
    VIRLOVASTXMLParser::setWrapperLimit(0);
    EXPECT_EQ(report.domain(), VIRLOAdFrameworkBundleIdentifier);
    EXPECT_EQ(report.code(), VIRLOVASTXMLParser::wrapperLimitReached);
    EXPECT_EQ(report.ad().type(), "Wrapper");
    EXPECT_EQ(requestCount("/0.xml"), 1U);
}

TEST_F(ChainTest, CountsTheRecordsOfAllItsDocuments)
{
    std::string ads;
    for (std::size_t ad = 0; ad <= VIRLOVASTDocumentReader::maximumRecords / 2; ++ad)
        ads += "<Ad/>";
    serve("/end.xml", vast(ads));
    serve("/w.xml", vast(wrapperAd("w", url("/end.xml")) + ads));
    EXPECT_FALSE(parse(url("/end.xml")).error);
    EXPECT_EQ(parse(url("/w.xml")).code(), XMLReader::refused);
}

/// A document whose wrappers lead back to it.
class LoopTest : public ChainTest
{
protected:
    static constexpr std::size_t unpaced = VIRLOVASTDocumentLoader::firstPacedDocument - 1;

    void serveLoop(int wrappers)
    {
        std::string ads;
        for (int wrapper = 0; wrapper < wrappers; ++wrapper)
            ads += wrapperAd("w", url("/loop.xml"), impression("http://w/"));
        serve("/loop.xml", vast(ads));
    }

    std::shared_ptr<VIRLOVASTXMLParser> startLoop()
    {
        auto parser = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/loop.xml")));
        parser->setOwner(owner);
        parser->setCompletionHandler([this](auto ads, const OptionalError& error) {
            const std::lock_guard lock(mutex); // loops end at the same time, each on its worker
            report = {std::move(ads), error};
            ++reports;
        });
        return parser;
    }

    /// The next request waits for the clock.
    [[nodiscard]] bool isPaused(std::size_t requests)
    {
        return settle(
            [this, requests] { return requestCount("/loop.xml") == requests && clock.pendingCount() == 1; });
    }

    /// An abandoned loop would keep its documents.
    void TearDown() override
    {
        owner.reset();
        clock.advance(VIRLOVASTDocumentLoader::longestPause);
        EXPECT_TRUE(settle([this] { return reports > 0; }));
        ChainTest::TearDown();
    }

    TestClock clock;
    std::mutex mutex;
    Report report;
    std::atomic<int> reports{0};
    std::shared_ptr<int> owner = std::make_shared<int>();
};

TEST_F(LoopTest, IsPacedFromItsTwoHundredthDocumentOnAndHasNoEndOfItsOwn)
{
    serveLoop(1);
    startLoop()->parse();
    std::size_t requests = unpaced;
    ASSERT_TRUE(isPaused(requests));
    Seconds pause(0.01);
    for (; requests < unpaced + 15; ++requests) {
        clock.advance(0.6 * pause);
        EXPECT_FALSE(
            settle([this, requests] { return requestCount("/loop.xml") > requests; }, Seconds(0.05)));
        clock.advance(0.41 * pause);
        ASSERT_TRUE(isPaused(requests + 1)) << "after a pause of " << pause.count();
        pause = std::min(2 * pause, Seconds(60));
    }
    EXPECT_EQ(reports, 0);

    serve("/loop.xml", vast(inlineAd("end", "")));
    clock.advance(Seconds(60));
    ASSERT_TRUE(settle([this] { return reports == 1; }));
    EXPECT_FALSE(report.error);
    EXPECT_EQ(report.ad().impressions().size(), requests);
}

TEST_F(LoopTest, SendsOneRequestAtATimeHoweverManyWrappersADocumentHas)
{
    serveLoop(3);
    startLoop()->parse();
    ASSERT_TRUE(isPaused(unpaced));
    Seconds pause(0.01);
    for (std::size_t more = 1; more <= 10; ++more, pause *= 2) {
        clock.advance(pause);
        ASSERT_TRUE(isPaused(unpaced + more));
    }
}

TEST_F(LoopTest, EndsWhenTheOwnerOfItsParserIsGone)
{
    serveLoop(2);
    startLoop()->parse();
    ASSERT_TRUE(isPaused(unpaced));
    owner.reset();
    clock.advance(Seconds(60));
    ASSERT_TRUE(settle([this] { return reports == 1; }));
    EXPECT_EQ(report.code(), URLSession::cancelled);
    EXPECT_EQ(requestCount("/loop.xml"), unpaced);
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(LoopTest, HoldsUpNobodyAndEndsWithTheApp)
{
    serveLoop(1);
    serve("/ad.xml", vast(inlineAd("ad", "")));
    constexpr int loops = 30; // more than there are workers
    for (int loop = 0; loop < loops; ++loop)
        startLoop()->parse();
    ASSERT_TRUE(settle([this] { return requestCount("/loop.xml") >= 300; }));
    std::atomic<bool> isRead{false};
    const auto other = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/ad.xml")));
    other->setCompletionHandler([&isRead](const auto& ads, const auto&) { isRead = ads.has_value(); });
    other->parse();
    EXPECT_TRUE(settle([&isRead] { return isRead.load(); }, Seconds(2)));
    EXPECT_EQ(reports, 0);

    NotificationCenter::defaultCenter().post(ApplicationWillTerminateNotification);
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    clock.advance(VIRLOVASTDocumentLoader::longestPause);
    EXPECT_TRUE(settle([this] { return reports == loops; }, Seconds(5)));
    EXPECT_FALSE(parse(url("/ad.xml")).error) << "later tags use a new session";
}

} // namespace
} // namespace virlo::test
