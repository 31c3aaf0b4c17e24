#include "RowName.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"
#include "VASTText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace virlo::test
{
namespace
{

constexpr const char* begin = "<VAST><Ad><InLine>";
constexpr const char* end = "</InLine></Ad></VAST>";

/// `text` as often as `times` between the two. Written to the file piece by piece: the memory that the tool
/// is reported to have used starts at that of this process.
struct HostileRow {
    const char* name;
    std::string before;
    std::string (*text)(int number);
    int times;
    std::string after;
    bool isRead; ///< false: ends in an error
};

std::string same(const char* text, int times)
{
    std::string result;
    for (int each = 0; each < times; ++each)
        result += text;
    return result;
}

template <char... Text>
std::string fixed(int)
{
    return {Text...};
}

/// Each entity holds ten of the one before.
std::string laugh(int level)
{
    const std::string before = level == 0 ? "ha" : "&e" + std::to_string(level - 1) + ";";
    return "<!ENTITY e" + std::to_string(level) + " '" + same(before.c_str(), 10) + "'>";
}

std::string declaredAttribute(int number)
{
    return " a" + std::to_string(number) + " CDATA 'v'";
}

std::string attribute(int number)
{
    return " a" + std::to_string(number) + "='v'";
}

using HostileDocument = testing::TestWithParam<HostileRow>;

TEST_P(HostileDocument, EndsInAResultOrAnErrorSoonAndInLittleMemory)
{
    const HostileRow& row = GetParam();
    const TemporaryFolder folder;
    const std::string path = folder.path("document.xml");
    {
        std::ofstream file(path, std::ios::binary);
        file << row.before;
        for (int number = 0; number < row.times; ++number)
            file << row.text(number);
        file << row.after;
        ASSERT_TRUE(file.flush());
    }
    const ToolRun run({"--no-merge", path});
    EXPECT_EQ(run.exitStatus, row.isRead ? 0 : 1);
    const auto report = nlohmann::json::parse(run.output, nullptr, false);
    ASSERT_TRUE(report.is_object()) << run.output.substr(0, 1000);
    EXPECT_EQ(report["ads"].is_array(), row.isRead) << report["error"];
    EXPECT_EQ(run.output.find("root:"), std::string::npos) << "the output holds a file of the device";
    if (measures()) {
        EXPECT_LT(run.processorTime, std::chrono::seconds(1));
        EXPECT_LT(run.memoryMiB, 80); // ten times the longest document that is read
    }
}

const auto x = &fixed<'x'>;
constexpr int million = 1 << 20;
const std::string passwords = "SYSTEM 'file:///etc/passwd'";

INSTANTIATE_TEST_SUITE_P(
    Rows, HostileDocument,
    testing::Values(
        HostileRow{"Laughs", "<!DOCTYPE VAST [", laugh, 12, "]><VAST>&e11;</VAST>", false},
        HostileRow{"LongEntityOften",
                   "<!DOCTYPE VAST [<!ENTITY e '" + std::string(200'000, 'x') + "'>]><VAST>",
                   fixed<'&', 'e', ';'>, 100'000, "</VAST>", false},
        HostileRow{"ManyDeclaredAttributes", "<!DOCTYPE VAST [<!ATTLIST b", declaredAttribute, 20'000,
                   ">]><VAST>" + same("<b/>", 50'000) + "</VAST>", false},
        HostileRow{"FileOfTheDevice",
                   "<!DOCTYPE VAST [<!ENTITY e " + passwords + ">]>" + begin + "<AdSystem>",
                   fixed<'&', 'e', ';'>, 1, std::string("</AdSystem>") + end, true},
        HostileRow{"TypeOfTheDevice",
                   "<!DOCTYPE VAST " + passwords + " [<!ENTITY % p " + passwords + "> %p;]>" + begin, x, 1,
                   end, true},
        HostileRow{"DeepNesting", begin, fixed<'<', 'd', '>'>, 100'000, same("</d>", 100'000) + end, true},
        HostileRow{"DeepNestingCutOff", "", fixed<'<', 'A', 'd', '>'>, 100'000, "", false},
        HostileRow{"ManyAttributes", begin + std::string("<Impression"), attribute, 100'000,
                   "><![CDATA[http://x/]]></Impression>" + std::string(end), true},
        HostileRow{"LongText", begin + std::string("<Error>"), x, 7 * million, "</Error>" + std::string(end),
                   true},
        HostileRow{"LongTitle", begin + std::string("<AdTitle><![CDATA["), x, 7 * million,
                   "]]></AdTitle>" + std::string(end), true},
        HostileRow{"LongAttribute", "<VAST><Ad id='", x, 7 * million, "'/></VAST>", true},
        HostileRow{"LongName", "<", x, 7 * million, "", false},
        HostileRow{"ManyLinesAndEntities", begin + std::string("<Error>"),
                   fixed<'&', 'a', 'm', 'p', ';', '\n'>, million, "</Error>" + std::string(end), true},
        HostileRow{"TooLong", begin, x, 9 * million, end, false},
        HostileRow{"ManyAds", "<VAST>", fixed<'<', 'A', 'd', '/', '>'>, million, "</VAST>", false},
        HostileRow{"ManyPiecesOfText", begin + std::string("<AdSystem>"), fixed<'x', '<', '?', 'i', '?', '>'>,
                   million, "</AdSystem>" + std::string(end), true},
        HostileRow{"NullBytes", "", fixed<'\0'>, million, "", false}),
    rowName);

} // namespace
} // namespace virlo::test
