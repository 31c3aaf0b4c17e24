#include "TemporaryFolder.h"
#include "ToolRun.h"
#include "VASTText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <utility>

namespace virlo::test
{
namespace
{

std::string repeated(const std::string& text, int count)
{
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (int each = 0; each < count; ++each)
        result += text;
    return result;
}

/// A document that is never whole in this process: the tool's figures begin with those of its parent.
struct Document {
    Document(std::string text) : before(std::move(text)) {} // NOLINT(google-explicit-constructor)

    /// `text` over and over between the two.
    Document(std::string first, const std::string& text, int times, std::string last)
        : before(std::move(first))
        , middle(repeated(text, 1024))
        , count(times / 1024)
        , after(std::move(last))
    {
    }

    void write(const std::string& path) const
    {
        std::ofstream file(path, std::ios::binary);
        file << before;
        for (int each = 0; each < count; ++each)
            file << middle;
        file << after;
        ASSERT_TRUE(file.flush());
    }

    std::string before;
    std::string middle;
    int count = 0;
    std::string after;
};

std::string withType(const std::string& declarations, const std::string& content)
{
    return "<!DOCTYPE VAST [" + declarations + "]>" +
           vast(inlineAd("1", "<AdSystem>" + content + "</AdSystem>"));
}

/// Each entity holds ten of the one before.
Document laughs()
{
    std::string declarations = "<!ENTITY e0 'ha'>";
    for (int level = 1; level < 12; ++level)
        declarations += "<!ENTITY e" + std::to_string(level) + " '" +
                        repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
    return withType(declarations, "&e11;");
}

/// Each entity holds the one before: a way down as long as the document.
Document ladder()
{
    std::string declarations = "<!ENTITY e0 'ha'>";
    for (int level = 1; level < 100'000; ++level)
        declarations += "<!ENTITY e" + std::to_string(level) + " '&e" + std::to_string(level - 1) + ";'>";
    return withType(declarations, "&e99999;");
}

Document manyAttributes()
{
    std::string attributes;
    for (int number = 0; number < 100'000; ++number)
        attributes += " a" + std::to_string(number) + "='v'";
    return vast(inlineAd("1", marked("Impression", "http://x/", attributes)));
}

/// The document in two bytes a character, without a mark.
std::string wide(const std::string& document)
{
    std::string result;
    for (const char character : document)
        result += {character, '\0'};
    return result;
}

struct HostileRow {
    const char* name;
    Document (*document)();
    bool isRead; ///< or else refused with an error
};

class HostileDocument : public testing::TestWithParam<HostileRow>
{
};

TEST_P(HostileDocument, EndsInAResultOrAnErrorSoonAndInLittleMemory)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("document.xml");
    GetParam().document().write(path);
    const ToolRun run({"--no-merge", path});
    EXPECT_EQ(run.exitStatus, GetParam().isRead ? 0 : 1);
    const auto report = nlohmann::json::parse(run.output, nullptr, false);
    ASSERT_TRUE(report.is_object()) << run.output.substr(0, 1000);
    EXPECT_EQ(report["ads"].is_array(), GetParam().isRead) << report["error"];
    EXPECT_EQ(run.output.find("root:"), std::string::npos) << "a file of the device is in the answer";
    if (measures()) {
        EXPECT_LT(run.processorTime, std::chrono::seconds(1));
        EXPECT_LT(run.memoryMiB, 64);
    }
}

constexpr const char* begun = "<VAST><Ad><InLine>";
constexpr const char* ended = "</InLine></Ad></VAST>";

std::string begunWith(const std::string& text)
{
    return begun + text;
}

std::string endedWith(const std::string& text)
{
    return text + ended;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HostileDocument,
    testing::Values(
        HostileRow{"Laughs", laughs, false}, HostileRow{"Ladder", ladder, false},
        HostileRow{"LongEntityOften",
                   []() -> Document {
                       return {"<!DOCTYPE VAST [<!ENTITY e '" + std::string(200'000, 'x') + "'>]>" +
                                   begunWith("<AdSystem>"),
                               "&e;", 100 << 10, endedWith("</AdSystem>")};
                   },
                   false},
        HostileRow{"LongEntityOftenWhereNobodyLooks",
                   []() -> Document {
                       return {"<!DOCTYPE VAST [<!ENTITY e '" + std::string(2 << 20, 'x') + "'>]>" +
                                   begunWith("<Error>"),
                               "&e;", 1 << 20, endedWith("</Error>")};
                   },
                   false},
        HostileRow{"ManyGivenAttributesOnManyElements",
                   []() -> Document {
                       std::string list;
                       for (int number = 0; number < 20'000; ++number)
                           list += " a" + std::to_string(number) + " CDATA 'v'";
                       return {"<!DOCTYPE VAST [<!ATTLIST b" + list + ">]>" + begun, "<b/>", 50 << 10, ended};
                   },
                   false},
        HostileRow{"FileOfTheDevice",
                   []() -> Document { return withType("<!ENTITY e SYSTEM 'file:///etc/passwd'>", "&e;"); },
                   true},
        HostileRow{"TypeOfTheDevice",
                   []() -> Document {
                       return "<!DOCTYPE VAST SYSTEM 'file:///etc/passwd' [<!ENTITY % p SYSTEM "
                              "'file:///etc/passwd'> %p;]>" +
                              vast(inlineAd("1", ""));
                   },
                   true},
        HostileRow{"DeepNesting",
                   []() -> Document {
                       return {begun, "<deep>", 100 << 10, endedWith(repeated("</deep>", 100 << 10))};
                   },
                   true},
        HostileRow{"DeepNestingCutOff",
                   []() -> Document {
                       return {"", "<Ad>", 100 << 10, ""};
                   },
                   false},
        HostileRow{"ManyAttributes", manyAttributes, true},
        HostileRow{"LongText",
                   []() -> Document {
                       return {begunWith("<AdParameters>"), "x", 64 << 20, endedWith("</AdParameters>")};
                   },
                   true},
        HostileRow{"LongTitle",
                   []() -> Document {
                       return {begunWith("<AdTitle><![CDATA["), "x", 64 << 20, endedWith("]]></AdTitle>")};
                   },
                   false},
        HostileRow{"LongTextOfEntitiesAndLines",
                   []() -> Document {
                       return {begunWith("<Error>"), "&amp;\n", 2 << 20, endedWith("</Error>")};
                   },
                   true},
        HostileRow{"LongAttribute",
                   []() -> Document {
                       return {"<VAST><Ad id='", "x", 64 << 20, "'/></VAST>"};
                   },
                   false},
        HostileRow{"LongComment",
                   []() -> Document {
                       return {"<VAST><!--", "x", 64 << 20, "--></VAST>"};
                   },
                   false},
        HostileRow{"LongName",
                   []() -> Document {
                       return {"<", "x", 64 << 20, ""};
                   },
                   false},
        HostileRow{"ManyAds",
                   []() -> Document {
                       return {"<VAST>", "<Ad/>", 4 << 20, "</VAST>"};
                   },
                   false},
        HostileRow{
            "ManyEmptyPieces",
            []() -> Document {
                return {begunWith("<Impression>"), "<![CDATA[]]>", 1 << 20, endedWith("</Impression>")};
            },
            false},
        HostileRow{"ManyPiecesOfText",
                   []() -> Document {
                       return {begunWith("<AdSystem>"), "x<?i?>", 1 << 20, endedWith("</AdSystem>")};
                   },
                   true},
        HostileRow{"TwoBytesACharacter", []() -> Document { return wide(vast(inlineAd("1", ""))); }, true},
        HostileRow{"TwoBytesACharacterCutInTheMiddle",
                   []() -> Document { return wide(vast(inlineAd("1", ""))).substr(0, 41); }, false},
        HostileRow{
            "OtherEncodingThanItSays",
            []() -> Document { return "<?xml version='1.0' encoding='UTF-16'?>" + vast(inlineAd("1", "")); },
            false},
        HostileRow{"EncodingThatIsAPath",
                   []() -> Document {
                       return "<?xml version='1.0' encoding='windows-1252.." + std::string(4000, 'x') +
                              "'?>" + vast(inlineAd("1", ""));
                   },
                   false},
        HostileRow{"NullBytes", []() -> Document { return std::string(1 << 20, '\0'); }, false},
        HostileRow{"NullByteInABlock",
                   []() -> Document { return vast(inlineAd("1", marked("AdTitle", std::string(1, '\0')))); },
                   false},
        HostileRow{"CutInABlock", []() -> Document { return begunWith("<AdTitle><![CDATA[text"); }, false},
        HostileRow{"TwoRoots", []() -> Document { return vast(inlineAd("1", "")) + vast(inlineAd("2", "")); },
                   false},
        HostileRow{"Nothing", []() -> Document { return std::string(); }, false}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace virlo::test
