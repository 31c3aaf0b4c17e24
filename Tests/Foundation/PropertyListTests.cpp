#include "PropertyList.h"

#include "RowName.h"

#include <gmock/gmock.h>

namespace virlo::test
{

namespace
{

using testing::HasSubstr;
using testing::StartsWith;
using Dates = std::map<std::string, Date>;

Date at(std::int64_t seconds)
{
    return Date(std::chrono::seconds(seconds));
}

TEST(PropertyList, DatesAreReadAsWritten)
{
    const Dates dates{{"https://poll.example.com/a?b=[X]&c=<d>\"'", at(1456827630)},
                      {"https://poll.example.com/\xc3\xa4", at(0)},
                      {"", at(978307199)}};
    const auto xml = PropertyList::xmlFromDates(dates);
    EXPECT_THAT(xml, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    EXPECT_THAT(xml, HasSubstr("<date>2016-03-01T10:20:30Z</date>"));
    EXPECT_EQ(PropertyList::datesFromXML(xml), dates);
    EXPECT_EQ(PropertyList::datesFromXML(PropertyList::xmlFromDates({})), Dates());
}

TEST(PropertyList, OtherEntriesAreSkipped)
{
    constexpr const char* xml = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
        <key>text</key><string>2016-03-01T10:20:30Z</string><key>list</key><array><date>2016-03-01T10:20:30Z</date></array>
        <key>good</key><date>2016-03-01T10:20:30Z</date><key>number</key><real>1</real></dict></plist>)";
    EXPECT_EQ(PropertyList::datesFromXML(xml), (Dates{{"good", at(1456827630)}}));
}

struct DamagedRow {
    const char* name;
    std::string text;
};

class DamagedPropertyList : public testing::TestWithParam<DamagedRow>
{
};

TEST_P(DamagedPropertyList, ReadsAsNothing)
{
    EXPECT_EQ(PropertyList::datesFromXML(GetParam().text), std::nullopt);
}

std::string nestedArrays(int depth)
{
    std::string text = "<plist version=\"1.0\">";
    for (int index = 0; index < depth; ++index)
        text += "<array>";
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedPropertyList,
    testing::Values(DamagedRow{"Empty", ""}, DamagedRow{"Text", "no property list"},
                    DamagedRow{"Zeros", std::string(4096, '\0')}, DamagedRow{"Binary", "bplist00\xff"},
                    DamagedRow{"WrongRoot", "<plist version=\"1.0\"><array/></plist>"},
                    DamagedRow{"Deep", nestedArrays(300'000)},
                    DamagedRow{"TooLong", "<plist>" + std::string(std::size_t{17} << 20, ' ')}),
    rowName);

} // namespace

} // namespace virlo::test
