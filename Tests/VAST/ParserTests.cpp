#include "URLSession.h"
#include "VASTServer.h"
#include "VASTText.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOConstans.h"

#include <gtest/gtest.h>

namespace virlo::test
{
namespace
{

using ParserTest = VASTServer;

TEST_F(ParserTest, ReportsTheAdsOfAFetchedDocument)
{
    serve("/ad.xml", vast(inlineAd("1", impression("http://x/")) + inlineAd("2", "")));
    const auto parser = VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url("/ad.xml")));
    EXPECT_EQ(parser->description(), "<VIRLOVASTXMLParser contentURL: " + url("/ad.xml") + ">");
    const Report report = reportOf(parser);
    EXPECT_FALSE(report.error);
    ASSERT_TRUE(report.ads);
    ASSERT_EQ(report.ads->size(), 2U);
    EXPECT_EQ(impressionsOf(*report.ads->front()), "http://x/");
    EXPECT_EQ(parser->extractedAdvertisements(), *report.ads);
}

TEST_F(ParserTest, ReportsAnEmptyListWhereADocumentHasNoAd)
{
    serve("/none.xml", "<VAST><Advert/></VAST>");
    const Report report = parse(url("/none.xml"));
    ASSERT_TRUE(report.ads);
    EXPECT_TRUE(report.ads->empty());
    ASSERT_TRUE(report.error);
    EXPECT_EQ(report.error->domain, VIRLOAdFrameworkBundleIdentifier);
    EXPECT_EQ(report.error->code, 0);
    EXPECT_EQ(report.error->userInfo, JSON({{"Reason", "No video is available."}}));
}

TEST_F(ParserTest, ReportsOnlyTheErrorOfADocumentThatBreaksHalfway)
{
    serve("/broken.xml", "<VAST>" + wrapperAd("1", url("/next.xml")) + "</Vast>");
    const Report report = parse(url("/broken.xml"));
    EXPECT_FALSE(report.ads);
    EXPECT_EQ(report.domain(), XMLReader::errorDomain);
    EXPECT_EQ(report.code(), XMLReader::notWellFormed);
    EXPECT_EQ(requestCount("/next.xml"), 0U);
}

TEST_F(ParserTest, ReportsWhyADocumentCannotBeFetched)
{
    server.setFault({.path = "/404.xml", .status = 404, .body = vast(inlineAd("1", ""))});
    const Report missing = parse(url("/404.xml"));
    EXPECT_FALSE(missing.ads);
    EXPECT_EQ(missing.domain(), VIRLOAdServerAPI::httpErrorDomain);
    EXPECT_EQ(missing.code(), 404);

    server.setFault({.path = "/cut.xml", .body = vast(inlineAd("1", "")), .cutBodyAfter = 20});
    EXPECT_EQ(parse(url("/cut.xml")).domain(), URLSession::errorDomain);

    const Report file = parse("file:///etc/hostname");
    EXPECT_EQ(file.domain(), URLSession::errorDomain);
    EXPECT_EQ(file.code(), URLSession::unsupportedURL);
}

TEST_F(ParserTest, ReportsNeitherAdsNorErrorWithoutAURL)
{
    const Report report = reportOf(VIRLOVASTXMLParser::initWithVASTURL(std::nullopt));
    EXPECT_FALSE(report.ads);
    EXPECT_FALSE(report.error);
}

} // namespace
} // namespace virlo::test
