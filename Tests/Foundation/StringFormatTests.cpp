#include "StringFormat.h"

#include <gmock/gmock.h>

#include <limits>
#include <memory>

namespace virlo::test
{

namespace
{

struct Record {
    [[nodiscard]] std::string description() const { return "<Record 100%@>"; }
};

enum class Kind { First = 1 };

TEST(StringFormat, FillsEachDirectiveFromItsArgument)
{
    EXPECT_EQ(format("app/sess/%@", "id"), "app/sess/id");
    EXPECT_EQ(
        format("%d %ld %lld %u %lu %llu", -1, 2L, -3LL, 5U, 6UL, std::numeric_limits<std::uint64_t>::max()),
        "-1 2 -3 5 6 18446744073709551615");
    EXPECT_EQ(format("%f|%lf|%.2f|%.f|%f", 1.5, 2.0F, 3.14159, 2.5, 7), "1.500000|2.000000|3.14|2|7.000000");
    EXPECT_EQ(format("%c%c%s%s", 'W', 'R', "text", std::string("!")), "WRtext!");
    EXPECT_EQ(format("100%%"), "100%");
}

TEST(StringFormat, DescribesWhatItIsGiven)
{
    const auto record = std::make_shared<Record>();
    EXPECT_EQ(format("%@ %@ %@", Record(), record, std::optional<Record>()),
              "<Record 100%@> <Record 100%@> (null)");
    EXPECT_EQ(format("%@ %@ %@", std::shared_ptr<Record>(), nullptr, static_cast<const char*>(nullptr)),
              "(null) (null) (null)");
    EXPECT_EQ(format("%@ %@ %@ %d", true, 4.0, 0.1, Kind::First), "1 4 0.1 1");
    EXPECT_EQ(format("%@", Date(std::chrono::milliseconds(1456827630999))), "2016-03-01 10:20:30 +0000");
    EXPECT_EQ(format("%@", Date(std::chrono::milliseconds(-1))), "1969-12-31 23:59:59 +0000");
    EXPECT_EQ(format("%@", JSON{{"a", {1, "x\xff"}}}), "{\"a\":[1,\"x\xef\xbf\xbd\"]}");
    EXPECT_EQ(format("%@", Error{"domain", 404, {{"a", 1}}}),
              "Error Domain=domain Code=404 UserInfo={\"a\":1}");
    EXPECT_EQ(format("%@ %@", std::vector<std::string>{"a", "b"}, std::vector<int>()), "(a, b) ()");
    EXPECT_EQ(format("%@", std::map<std::string, Date>{{"u", Date()}, {"v", Date()}}),
              "{u = 1970-01-01 00:00:00 +0000; v = 1970-01-01 00:00:00 +0000}");
}

TEST(StringFormat, ArgumentsAreNeverPatternsAndUnknownDirectivesStay)
{
    EXPECT_EQ(format("%@ and %@", "%@ %s %n", "b"), "%@ %s %n and b");
    EXPECT_EQ(format("%@ %@", "one"), "one %@");
    EXPECT_EQ(format("%n %y %", 1), "%n %y %");
    EXPECT_EQ(format("%1$@", "a"), "%1$@");
    EXPECT_EQ(format("none", 1, 2), "none");
}

TEST(StringFormat, PrecisionIsBoundedAndOtherTypesAreDescribed)
{
    EXPECT_EQ(format("%999d %x", 1, 2), "%999d %x");
    EXPECT_LE(format("%.999999999f", -1e308).size(), 512U);
    EXPECT_EQ(format("%d %u %f", "12abc", "x", "4.5"), "12abc x 4.5");
    EXPECT_EQ(format("%d", 1e300), std::to_string(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(
        format("%f %@", std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()),
        "nan inf");
}

} // namespace

} // namespace virlo::test
