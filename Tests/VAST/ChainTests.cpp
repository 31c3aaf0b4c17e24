#include "GlobalQueue.h"
#include "NotificationCenter.h"
#include "Settle.h"
#include "VASTServer.h"
#include "VASTText.h"
#include "VIRLOVASTWrapperAd.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>

namespace virlo::test
{
namespace
{

class ChainTest : public VASTServer
{
protected:
    /// `/1.xml` to `/COUNT.xml` are wrappers, each pointing to the next; `/0.xml` is the end.
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

TEST_F(ChainTest, HasNoLimit)
{
    serveChain(300);
    const Report report = parse(url("/300.xml"));
    EXPECT_FALSE(report.error);
    EXPECT_EQ(report.ad().impressions().size(), 301U);
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

TEST_F(ChainTest, KeepsAWrapperThatNamesNoDocumentWithoutAnError)
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

TEST_F(ChainTest, PutsEveryResultInTheFirstPlaceTheLaterOneWinning)
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

    // A wrapper whose place another result has taken still gives its own.
    serve("/first.xml", vast(wrapperAd("w1", url("/slow.xml"), impression("http://w1/")) +
                             wrapperAd("w2", url("/fast.xml"))));
    const Report first = parse(url("/first.xml"));
    ASSERT_TRUE(first.ads);
    EXPECT_EQ(impressionsOf(*first.ads->front()), "http://w1/");
}

TEST_F(ChainTest, UsesTheMergersThatItIsGiven)
{
    class OwnMerger : public VIRLOVASTAdMergerProtocol
    {
    public:
        void retrieveAndMergeWithCompletion(Completion completion) override
        {
            GlobalQueue::standard().async([completion = std::move(completion)] {
                completion(nullptr, Error{"own", 7, {}});
            });
        }
    };

    serve("/w.xml", vast(wrapperAd("w", url("/next.xml"))));
    const auto parser = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/w.xml")));
    parser->setMergerClass([](const auto&) { return std::make_shared<OwnMerger>(); });
    const Report report = reportOf(parser);
    EXPECT_EQ(report.code(), 7);
    EXPECT_EQ(report.ad().type(), "Wrapper");
    EXPECT_EQ(asked("/next.xml"), 0U);
}

std::size_t threadCount()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
        ++count;
    return count;
}

TEST_F(ChainTest, ThatNeverEndsHoldsUpNobodyAndEndsWithTheApp)
{
    serve("/loop.xml", vast(wrapperAd("w", url("/loop.xml"), impression("http://w/"))));
    serve("/ad.xml", vast(inlineAd("ad", "")));
    std::atomic<int> reports{0};
    constexpr int chains = 30; // more than there are workers
    for (int chain = 0; chain < chains; ++chain) {
        const auto parser = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/loop.xml")));
        parser->setCompletionHandler([&reports](const auto& ads, const OptionalError& error) {
            ++reports;
            EXPECT_TRUE(ads && ads->size() == 1);
            EXPECT_TRUE(error && error->domain == URLSession::errorDomain);
        });
        parser->parse();
    }
    ASSERT_TRUE(settle([this] { return asked("/loop.xml") >= 300; }));

    std::atomic<bool> ran{false};
    GlobalQueue::background().async([&ran] { ran = true; });
    EXPECT_TRUE(settle([&ran] { return ran.load(); }));
    std::atomic<bool> read{false};
    const auto other = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/ad.xml")));
    other->setCompletionHandler([&read](const auto& ads, const auto&) { read = ads.has_value(); });
    other->parse();
    EXPECT_TRUE(settle([&read] { return read.load(); }));
    EXPECT_EQ(reports, 0);
    // The server's own threads serve up to as many connections as the session opens.
    EXPECT_LT(threadCount(), 40U);

    NotificationCenter::defaultCenter().post(ApplicationWillTerminateNotification);
    EXPECT_TRUE(settle([&reports] { return reports == chains; }, Seconds(5)));
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    settleAll();
    // The server may still come upon what was sent before; then it hears nothing more.
    EXPECT_TRUE(settle([this] {
        const std::size_t before = asked("/loop.xml");
        return !settle([this, before] { return asked("/loop.xml") > before; }, Seconds(0.2));
    }));

    EXPECT_FALSE(parse(url("/ad.xml")).error) << "whoever comes later is served";
}

} // namespace
} // namespace virlo::test
