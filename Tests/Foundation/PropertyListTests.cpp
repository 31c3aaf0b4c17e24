#include "PropertyList.h"

#include "RowName.h"

#include <gmock/gmock.h>

#include <random>

namespace virlo::test
{

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

Date at(double seconds)
{
    return Date(std::chrono::round<std::chrono::milliseconds>(Seconds(seconds)));
}

std::vector<PropertyList::ArchivedObject> history()
{
    return {{"VIRLOTrackingItem", {{"placement", "AppLaunch"}}, {{"date", at(1456827630.25)}}},
            {"VIRLOTrackingItem", {{"placement", "Größe 🎬"}}, {{"date", at(-5)}}},
            {"VIRLOTrackingItem", {{"placement", ""}}, {{"date", at(1456827630.25)}}},
            {"VIRLOTrackingItem", {{"placement", "AppLaunch"}}, {{"date", at(4e9)}}}};
}

TEST(PropertyList, DatesGoThroughXML)
{
    const std::map<std::string, Date> dates{{"https://poll.example.com/a?b=[X]&c=<d>\"'", at(1456827630)},
                                            {"https://poll.example.com/\xc3\xa4", at(0)},
                                            {"", at(978307199)}};
    const auto xml = PropertyList::xmlFromDates(dates);
    EXPECT_THAT(xml, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    EXPECT_THAT(xml, HasSubstr("<date>2016-03-01T10:20:30Z</date>"));
    EXPECT_EQ(PropertyList::datesFromData(xml), dates);
    EXPECT_EQ(PropertyList::datesFromData(PropertyList::xmlFromDates({})), (std::map<std::string, Date>{}));
}

TEST(PropertyList, EntriesThatAreNoDatesArePassedOver)
{
    constexpr const char* xml = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
        <key>text</key><string>2016-03-01T10:20:30Z</string><key>list</key><array><date>2016-03-01T10:20:30Z</date></array>
        <key>good</key><date>2016-03-01T10:20:30Z</date><key>number</key><real>1</real></dict></plist>)";
    EXPECT_EQ(PropertyList::datesFromData(xml), (std::map<std::string, Date>{{"good", at(1456827630)}}));
}

TEST(PropertyList, KeyedArchiveKeepsOrderAndHasTheLayoutOfOne)
{
    const auto archive = PropertyList::keyedArchive(history());
    EXPECT_THAT(archive, StartsWith("bplist00"));
    for (const char* const part : {"$archiver", "NSKeyedArchiver", "$version", "$objects", "$top", "$null",
                                   "NS.objects", "NS.time", "$classname", "VIRLOTrackingItem"})
        EXPECT_THAT(archive, HasSubstr(part));
    EXPECT_EQ(PropertyList::objectsFromKeyedArchive(archive), history());
    EXPECT_EQ(PropertyList::objectsFromKeyedArchive(PropertyList::keyedArchive({})),
              std::vector<PropertyList::ArchivedObject>{});
    EXPECT_EQ(PropertyList::datesFromData(archive), (std::map<std::string, Date>{})) << "a list of no dates";
}

TEST(PropertyList, LongHistoryGoesThroughTheArchive)
{
    std::vector<PropertyList::ArchivedObject> objects;
    for (int index = 0; index < 3000; ++index)
        objects.push_back(
            {"Item", {{"placement", "P" + std::to_string(index % 700)}}, {{"date", at(index)}}});
    EXPECT_EQ(PropertyList::objectsFromKeyedArchive(PropertyList::keyedArchive(objects)), objects);
}

std::string bigEndian(std::uint64_t value, int width)
{
    std::string bytes;
    for (int shift = (width - 1) * 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

/// A binary list of arrays, each of which holds the next one `times` times.
std::string nestedBinary(int depth, int times)
{
    std::string data = "bplist00";
    std::string offsets;
    for (int index = 0; index <= depth; ++index) {
        offsets += bigEndian(data.size(), 4);
        data += index == depth ? '\x08' : static_cast<char>(0xA0 + times);
        for (int reference = 0; index < depth && reference < times; ++reference)
            data += bigEndian(static_cast<std::uint64_t>(index) + 1, 4);
    }
    const auto table = data.size();
    return data + offsets + std::string(6, '\0') + "\x04\x04" +
           bigEndian(static_cast<std::uint64_t>(depth) + 1, 8) + bigEndian(0, 8) + bigEndian(table, 8);
}

struct DamagedRow {
    const char* name;
    std::string data;
};

std::ostream& operator<<(std::ostream& stream, const DamagedRow& row)
{
    return stream << row.name;
}

class DamagedPropertyList : public testing::TestWithParam<DamagedRow>
{
};

TEST_P(DamagedPropertyList, ReadsAsNothing)
{
    EXPECT_EQ(PropertyList::datesFromData(GetParam().data), std::nullopt);
    EXPECT_EQ(PropertyList::objectsFromKeyedArchive(GetParam().data), std::nullopt);
}

std::string nestedXML(int depth)
{
    std::string text = "<plist version=\"1.0\">";
    for (int index = 0; index < depth; ++index)
        text += "<array>";
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedPropertyList,
    testing::Values(DamagedRow{"Empty", ""}, DamagedRow{"Text", "no property list"},
                    DamagedRow{"Zeros", std::string(4096, '\0')},
                    DamagedRow{"WrongRoot", "<plist version=\"1.0\"><array/></plist>"},
                    DamagedRow{"HeaderAlone", "bplist00"}, DamagedRow{"DeepXML", nestedXML(300'000)},
                    DamagedRow{"DeepBinary", nestedBinary(300'000, 1)},
                    DamagedRow{"UnfoldsToAThousandMillions", nestedBinary(30, 2)},
                    DamagedRow{"TooLong", "<plist>" + std::string(std::size_t{17} << 20, ' ')}),
    rowName);

TEST(PropertyList, NoCutAndNoFlippedBitHurts)
{
    const auto xml = PropertyList::xmlFromDates({{"a", at(0)}, {"b", at(1456827630)}});
    const auto archive = PropertyList::keyedArchive(history());
    std::mt19937 random(20160301);
    for (const auto& whole : {xml, archive}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            (void)PropertyList::datesFromData(whole.substr(0, length));
            (void)PropertyList::objectsFromKeyedArchive(whole.substr(0, length));
        }
        for (int round = 0; round < 5000; ++round) {
            auto damaged = whole;
            for (int flip = 0; flip < 3; ++flip)
                damaged[random() % damaged.size()] ^= static_cast<char>(1U << random() % 8);
            (void)PropertyList::datesFromData(damaged);
            (void)PropertyList::objectsFromKeyedArchive(damaged);
        }
    }
    EXPECT_EQ(PropertyList::objectsFromKeyedArchive(archive.substr(0, archive.size() - 1)), std::nullopt);
}

} // namespace

} // namespace virlo::test
