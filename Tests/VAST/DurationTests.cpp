#include "VIRLOVASTDuration.h"

#include <gtest/gtest.h>

namespace virlo::test
{
namespace
{

struct DurationRow {
    const char* text;
    double seconds;
};

TEST(Duration, IsHoursMinutesSecondsFromTheLeft)
{
    const DurationRow rows[] = {
        {"00:00:15", 15},
        {"00:00:15.999", 15},
        {"1:2:3:4", 3723},
        {"30", 108000},
        {"00:30", 1800},
        {"\n  00 : 01 :\t15.250\n ", 75},
        {"", 0},
        {"::", 0},
        {"00:00:15s", 0},
        {"00:00:1 5", 0},
        {"1:x:5", 3605},
        {"00:00:-5", -5},
        {"00:00:+5", 0},
        {"00:00:.5", 0},
        {"00:00:5.", 5},
        {"00:00:.", 0},
        {"00:00:1,000", 1000},
        {"00:00:1,00", 0},
        {"00:00:1000,000", 0},
        {"00:00:1e3", 0},
        {"00:00:00000000000000000000000000000000000000000007", 7},
    };
    for (const DurationRow& row : rows)
        EXPECT_EQ(VIRLOVASTDuration::seconds(row.text), row.seconds) << row.text;
    EXPECT_LT(VIRLOVASTDuration::seconds(std::string(1000, '9')), 1e24) << "a length must stay a number";
    EXPECT_EQ(VIRLOVASTDuration::seconds(std::string(4 << 20, ':')), 0);
}

} // namespace
} // namespace virlo::test
