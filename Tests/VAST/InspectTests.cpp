#include "DroppedAds.h"
#include "PassedOver.h"
#include "RowName.h"
#include "ToolRun.h"
#include "VASTServer.h"
#include "VASTText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>

namespace virlo::test
{
namespace
{

using nlohmann::json;

using InspectTest = VASTServer;

TEST_F(InspectTest, ShowsAChainMergedOrItsWrapperUnresolved)
{
    serve("/end.xml", vast(inlineAd("end", impression("http://end/"))));
    const std::string outer = vast(wrapperAd("w", url("/end.xml"), impression("http://w/")));
    serve("/w.xml", outer);
    folder.write("a w.xml", outer);

    for (const std::string& source : {url("/w.xml"), folder.path("a w.xml")}) {
        const ToolRun merged({"--timing", source});
        EXPECT_EQ(merged.exitStatus, 0);
        const json report = json::parse(merged.output);
        EXPECT_EQ(report["source"], source);
        EXPECT_EQ(report["error"], nullptr);
        ASSERT_EQ(report["ads"].size(), 1U);
        EXPECT_EQ(report["ads"][0]["class"], "VIRLOVASTAd");
        EXPECT_EQ(report["ads"][0]["impressions"].size(), 2U);
        EXPECT_FALSE(report["ads"][0].contains("VASTAdTagURL"));
        ASSERT_EQ(report["documents"].size(), 2U);
        EXPECT_EQ(report["documents"][1]["url"], url("/end.xml"));
        EXPECT_GT(report["documents"][1]["milliseconds"], 0);
    }

    server.clearRequests();
    const ToolRun plain({"--no-merge", folder.path("a w.xml")});
    EXPECT_EQ(plain.exitStatus, 0);
    const json ad = json::parse(plain.output)["ads"][0];
    EXPECT_EQ(ad["class"], "VIRLOVASTWrapperAd");
    EXPECT_EQ(ad["VASTAdTagURL"], url("/end.xml"));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(InspectTest, ReportsErrorsAndExitsWithOne)
{
    const ToolRun missing({folder.path("missing.xml")});
    EXPECT_EQ(missing.exitStatus, 1);
    const json report = json::parse(missing.output);
    EXPECT_EQ(report["ads"], nullptr);
    EXPECT_EQ(report["error"]["domain"], "com.virlohq.error.url");
    EXPECT_EQ(report["error"]["userInfo"]["Reason"], "No such file or directory");

    EXPECT_EQ(ToolRun({folder.path("")}).exitStatus, 1) << "a folder is not a document";
    EXPECT_EQ(ToolRun({"http://a b/"}).exitStatus, 1);

    // A document must not lead to a file.
    folder.write("secret.xml", vast(inlineAd("secret", "")));
    folder.write("w.xml", vast(wrapperAd("w", "file://" + folder.path("secret.xml"))));
    const ToolRun wrapper({folder.path("w.xml")});
    EXPECT_EQ(wrapper.exitStatus, 1);
    EXPECT_EQ(json::parse(wrapper.output)["ads"][0]["type"], "Wrapper");
}

TEST_F(InspectTest, StopsAtItsLimitOfDocuments)
{
    serve("/loop.xml", vast(wrapperAd("w", url("/loop.xml"))));
    for (const auto& [arguments, limit] : std::map<std::vector<std::string>, std::size_t>{
             {{"--timing", url("/loop.xml")}, 200}, {{"--timing", "--limit", "3", url("/loop.xml")}, 3}}) {
        const std::size_t before = requestCount("/loop.xml");
        const ToolRun run(arguments);
        EXPECT_EQ(run.exitStatus, 1);
        const json report = json::parse(run.output);
        EXPECT_EQ(report["ads"], nullptr);
        EXPECT_THAT(report["error"]["userInfo"]["Reason"],
                    testing::StartsWith("Stopped after " + std::to_string(limit) + " documents"));
        EXPECT_EQ(requestCount("/loop.xml") - before, limit);
    }
}

TEST_F(InspectTest, RefusesAWrongCommandLine)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"--none", "a.xml"},
                                               {"a.xml", "b.xml"},
                                               {""},
                                               {"--limit", "0", "a.xml"},
                                               {"a.xml", "--limit"}}) {
        const ToolRun run(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_EQ(run.output, "");
    }
    const ToolRun help({"--help"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_THAT(help.output, testing::StartsWith("usage: vast-inspect"));
}

TEST_F(InspectTest, ExplainsEveryDocumentOfAChain)
{
    serve("/end.xml", vast(inlineAd("end", "<AdTitle>Plain</AdTitle>") + inlineAd("second", "")));
    serve("/w.xml", vast(wrapperAd("w", url("/end.xml"), "<Extensions/>")));
    const ToolRun run({"--explain", url("/w.xml")});
    EXPECT_EQ(run.exitStatus, 0);
    const json documents = json::parse(run.output)["documents"];
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_EQ(documents[0]["passedOver"][0]["path"], "VAST/Ad/Wrapper/Extensions");
    EXPECT_EQ(documents[1]["passedOver"][0]["path"], "VAST/Ad/InLine/AdTitle");
    EXPECT_EQ(documents[0]["dropped"], json::array());
    EXPECT_EQ(documents[1]["dropped"][0]["path"], "VAST/Ad[2]");
    EXPECT_FALSE(documents[0].contains("milliseconds"));
}

TEST_F(InspectTest, ReadsKnownDocumentsFromFilesAndRequestsNothing)
{
    serve("/lost.xml", vast(inlineAd("lost", "")));
    folder.write("w.xml", vast(wrapperAd("w", "https://ads.example/end?cb=[CB]", "")));
    folder.write("end.xml", vast(inlineAd("end", "")));
    const ToolRun whole({"--known", "https://ads.example/w", folder.path("w.xml"), "--known",
                         "https://ads.example/end?cb=[CB]", folder.path("end.xml"), "https://ads.example/w"});
    EXPECT_EQ(json::parse(whole.output)["ads"][0]["identifier"], "end");
    const ToolRun unknown({"--known", "https://ads.example/w", folder.path("w.xml"), url("/lost.xml")});
    EXPECT_EQ(unknown.exitStatus, 1);
    EXPECT_TRUE(server.requests().empty());
    EXPECT_EQ(ToolRun({"--known", "https://ads.example/w"}).exitStatus, 2);
}

struct NoteRow {
    const char* name;
    std::string content; ///< of an InLine
    std::string note;    ///< part of the notes; empty for none
};

using ExplainTest = testing::TestWithParam<NoteRow>;

TEST_P(ExplainTest, SaysWhatIsIgnoredAndWhy)
{
    std::string notes;
    for (const auto& note : PassedOver().notes(vast(inlineAd("1", GetParam().content))))
        notes += note.path + ": " + note.reason + "\n";
    EXPECT_THAT(notes, testing::HasSubstr(GetParam().note));
    EXPECT_EQ(notes.empty(), GetParam().note.empty()) << notes;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExplainTest,
    testing::Values(
        NoteRow{"NothingWhereAllIsRead",
                "<AdSystem version='1'>S</AdSystem>" + marked("AdTitle", "T") + impression(" http://x/ ") +
                    creative("AdID='a' sequence='1'", "<Duration>00:00:30</Duration>" +
                                                          tracking("start", "http://x/") +
                                                          mediaFile("http://f/")),
                ""},
        NoteRow{"URLInPlainText", "<Impression>http://x/</Impression>",
                "VAST/Ad/InLine/Impression: the text is plain text"},
        NoteRow{"DurationInCDATA", creative("", marked("Duration", "00:00:30")),
                "VAST/Ad/InLine/Creatives/Creative/Linear/Duration: the text is in a CDATA section"},
        NoteRow{"IdentifierOfAnotherSpelling", creative("adId='a'", ""),
                "VAST/Ad/InLine/Creatives/Creative@adId: names are compared exactly: this is spelled 'AdID'"},
        NoteRow{"IdentifierOfAnotherName", creative("id='a'", ""),
                "VAST/Ad/InLine/Creatives/Creative@id: a creative's identifier is read from 'AdID' only"},
        NoteRow{"UnknownElement", "<Extensions><Deep/></Extensions>",
                "VAST/Ad/InLine/Extensions: this element is not read"},
        NoteRow{"WrongCase", "<impression/>",
                "VAST/Ad/InLine/impression: names are compared exactly: this is spelled 'Impression'"},
        NoteRow{"WrongPosition", "<MediaFiles/>",
                "VAST/Ad/InLine/MediaFiles: this element is not read at this position"},
        NoteRow{"NoURL", impression("http://x/a b"), "VAST/Ad/InLine/Impression: the text is not a URL"},
        NoteRow{"NoEvent",
                creative("", "<TrackingEvents>" + marked("Tracking", "http://x/") + "</TrackingEvents>"),
                "/Tracking: the element has no attribute 'event'"},
        NoteRow{"NoNumber", creative("sequence='first'", ""), "Creative@sequence: the value is not a number"},
        NoteRow{"ShortDuration", creative("", "<Duration>30</Duration>"),
                "Duration: the duration is read from the left"}),
    rowName);

TEST(DroppedAds, AreTheFirstForAResolvedWrapperAndAllOthersBehindOne)
{
    const auto dropped = [](const std::string& ads, bool isBehindWrapper) {
        std::string paths;
        for (const auto& note : DroppedAds::notes(vast(ads), isBehindWrapper))
            paths += note.path + " ";
        return paths;
    };
    const std::string first = inlineAd("a", "");
    const std::string wrapper = wrapperAd("b", "http://x/");
    const std::string withoutTarget = wrapperAd("b", "");
    EXPECT_EQ(dropped(first + withoutTarget, false), "");
    EXPECT_EQ(dropped(wrapper + first, false), "");
    EXPECT_EQ(dropped(first + first + withoutTarget, true), "VAST/Ad[2] VAST/Ad[3] ");
    EXPECT_EQ(dropped(first + wrapper + first, true), "VAST/Ad[1] VAST/Ad[3] ");
}

} // namespace
} // namespace virlo::test
