#include "VIRLOVASTDuration.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace virlo::test
{
namespace
{

TEST(Duration, IsHoursMinutesSecondsFromTheLeft)
{
    const std::pair<const char*, double> rows[] = {
        {"00:00:15.999", 15},
        {"1:2:3:4", 3723},
        {"30", 108000},
        {"00:30", 1800},
        {"\n  00 : 01 :\t15.250\n ", 75},
        {"::", 0},
        {"00:00:15s", 0},
        {"1:x:5", 3605},
        {"00:00:-5", -5},
        {"00:00:.", 0},
        {"00:00:1,000", 1000},
        {"00:00:1,00", 0},
        {"00:00:1000,000", 0},
        {"00:00:1e3", 0},
    };
    for (const auto& [text, seconds] : rows)
        EXPECT_EQ(VIRLOVASTDuration::seconds(text), seconds) << text;
    EXPECT_LT(VIRLOVASTDuration::seconds(std::string(1000, '9')), 1e24) << "a duration must be finite";
}

} // namespace
} // namespace virlo::test
