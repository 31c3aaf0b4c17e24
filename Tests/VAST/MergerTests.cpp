#include "StringFormat.h"
#include "VASTText.h"
#include "VIRLOVASTCreative.h"
#include "VIRLOVASTImpression.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrappedAdMerger.h"
#include "VIRLOVASTWrapperAd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace virlo::test
{
namespace
{

using testing::ElementsAre;

/// A document with the ads given, merged with a wrapper of the content given.
std::shared_ptr<VIRLOVASTAd> merged(const std::string& ads, const std::string& wrapperContent)
{
    const auto wrapper = std::dynamic_pointer_cast<VIRLOVASTWrapperAd>(
        recordsOf(vast(wrapperAd("w", "http://next.example/", wrapperContent))).front());
    return VIRLOVASTWrappedAdMerger::mergerWithAd(wrapper)->mergeAdvertisements(recordsOf(vast(ads)));
}

std::vector<std::string> filesOf(const VIRLOVASTCreative& creative)
{
    std::vector<std::string> urls;
    for (const auto& file : creative.mediaFiles().value_or(VIRLOVASTCreative::MediaFiles()))
        urls.push_back(file->url() ? file->url()->absoluteString() : "(none)");
    return urls;
}

std::string trackingOf(const VIRLOVASTCreative& creative)
{
    if (!creative.trackingEvents())
        return "(none)";
    return describe(std::map<std::string, std::set<URL>>(creative.trackingEvents()->begin(),
                                                         creative.trackingEvents()->end()));
}

TEST(Merger, AppendsTheWrappersImpressionsAndKeepsDuplicates)
{
    const auto ad =
        merged(inlineAd("a", impression("http://y/") + impression("http://x/")) + inlineAd("b", ""),
               impression("http://x/") + impression(" "));
    EXPECT_EQ(impressionsOf(*ad), "http://y/ http://x/ http://x/ (none)");
    EXPECT_EQ(ad->identifier(), "a") << "the first ad of the list is used, with its own identifier";
}

TEST(Merger, MergesCreativesOfTheSameSequence)
{
    const auto ad =
        merged(inlineAd("a", creative("AdID='t' sequence='1'", "<Duration>00:00:30</Duration>" +
                                                                   tracking("start", "http://u2/") +
                                                                   mediaFile("http://f1/"))),
               creative("AdID='s' sequence='1'",
                        "<Duration>00:00:20</Duration>" + tracking("start", "http://u1/") +
                            tracking("start", "http://u2/") + tracking("close", "http://c/") +
                            mediaFile("http://f1/") + mediaFile("http://f2/") + mediaFile("http://f2/")));
    ASSERT_EQ(ad->creatives().size(), 1U);
    const VIRLOVASTCreative& target = *ad->creatives().front();
    EXPECT_EQ(target.identifier(), "t");
    EXPECT_EQ(target.duration(), 20);
    EXPECT_EQ(trackingOf(target), "{close = (http://c/); start = (http://u1/, http://u2/)}");
    EXPECT_THAT(filesOf(target), ElementsAre("http://f1/", "http://f2/"));
}

TEST(Merger, SetsTheDurationTo0ForAWrapperWithoutOne)
{
    const auto ad = merged(inlineAd("a", creative("", "<Duration>00:00:30</Duration>")), creative("", ""));
    EXPECT_EQ(ad->creatives().front()->duration(), 0);
}

TEST(Merger, LosesTrackingURLsWhereTheTargetHasNone)
{
    const auto without =
        merged(inlineAd("a", creative("", "")), creative("", tracking("start", "http://u/")));
    EXPECT_EQ(trackingOf(*without->creatives().front()), "(none)");
    // A text that is not a URL still makes the target an empty dictionary, which takes them.
    const auto empty = merged(inlineAd("a", creative("", tracking("start", "no URL"))),
                              creative("", tracking("start", "http://u/")));
    EXPECT_EQ(trackingOf(*empty->creatives().front()), "{start = (http://u/)}");
}

TEST(Merger, AddsMediaFilesToATargetWithoutAnyAndKeepsAllThoseWithoutAURL)
{
    const auto ad = merged(inlineAd("a", creative("", "")), creative("", mediaFile(" ") + mediaFile(" ")));
    EXPECT_THAT(filesOf(*ad->creatives().front()), ElementsAre("(none)", "(none)"));
    const auto none = merged(inlineAd("a", creative("", "")), creative("", ""));
    EXPECT_FALSE(none->creatives().front()->mediaFiles());
}

TEST(Merger, AddsCreativesOfOtherSequencesThemselves)
{
    const auto wrapper = std::dynamic_pointer_cast<VIRLOVASTWrapperAd>(
        recordsOf(vast(wrapperAd("w", "http://next.example/",
                                 creative("AdID='two' sequence='2'", "<Duration>00:00:05</Duration>") +
                                     creative("AdID='again' sequence='2'", "<Duration>00:00:07</Duration>"))))
            .front());
    const auto ads = recordsOf(vast(inlineAd("a", creative("AdID='one' sequence='1'", ""))));
    VIRLOVASTWrappedAdMerger::initWithAd(wrapper)->mergeWithAd(*ads.front());
    ASSERT_EQ(ads.front()->creatives().size(), 2U);
    EXPECT_EQ(ads.front()->creatives()[1], wrapper->creatives()[0]);
    EXPECT_EQ(ads.front()->creatives()[1]->duration(), 7)
        << "the second of a sequence is merged into the first";

    const auto& creatives = ads.front()->creatives();
    EXPECT_EQ(VIRLOVASTWrappedAdMerger::arrayIndexOfObjectWithSequence(creatives, 2), 1);
    EXPECT_EQ(VIRLOVASTWrappedAdMerger::arrayIndexOfObjectWithSequence(creatives, 3), -1);
    EXPECT_FALSE(VIRLOVASTWrappedAdMerger::arrayContainsObjectWithSequence(creatives, 0));
}

TEST(Records, AreEqualByIdentifierOrURL)
{
    const auto named = recordsOf(
        vast(inlineAd("1", "") + wrapperAd("1", "http://n/") + "<Ad><InLine/></Ad><Ad><InLine/></Ad>"));
    EXPECT_TRUE(named[0]->isEqual(*named[1]));
    EXPECT_TRUE(named[1]->isEqual(*named[0]));
    EXPECT_EQ(named[0]->hash(), named[1]->hash());
    EXPECT_FALSE(named[2]->isEqual(*named[3])) << "ads without an identifier are not equal";

    const auto ads = recordsOf(vast(
        inlineAd("2", marked("Impression", "http://x/", " id='a'") + marked("Impression", " http://x/ ") +
                          impression("") + creative("AdID='c'", mediaFile("http://f/") + mediaFile("")))));
    const auto& impressions = ads[0]->impressions();
    EXPECT_TRUE(impressions[0]->isEqual(*impressions[1]));
    EXPECT_EQ(impressions[0]->hash(), impressions[1]->hash());
    EXPECT_FALSE(impressions[2]->isEqual(*impressions[2]));
    const VIRLOVASTCreative& creative = *ads[0]->creatives()[0];
    EXPECT_TRUE(creative.isEqual(*VIRLOVASTCreative::initWithProperties({{"AdID", "c"}, {"sequence", "7"}})));
    EXPECT_FALSE((*creative.mediaFiles())[1]->isEqual(*(*creative.mediaFiles())[1]));
}

} // namespace
} // namespace virlo::test
