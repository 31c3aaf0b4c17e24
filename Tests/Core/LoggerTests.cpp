#include "LogCapture.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOUserProfile.h"

#include <gmock/gmock.h>

namespace virlo::test
{
namespace
{

void logAtEveryLevel()
{
    VIRLOAdFrameworkLogger::logErrorWithFormat("error %@", "%@ %d");
    VIRLOAdFrameworkLogger::logWarningWithFormat("warning %d", 2);
    VIRLOAdFrameworkLogger::logNoticeWithFormat("notice");
    VIRLOAdFrameworkLogger::logInfoWithFormat("info");
}

struct Level {
    std::int64_t level;
    std::size_t lines;
};

class Logger : public testing::TestWithParam<Level>
{
protected:
    ~Logger() override { VIRLOAdFrameworkLogger::setDebugLevel(2); }
};

TEST_P(Logger, WritesWhatItsLevelLetsThroughInOrder)
{
    const std::vector<std::string> all{"error %@ %d", "warning 2", "notice", "info"};
    for (const std::string& line : all)
        allowLog(line);
    VIRLOAdFrameworkLogger::setDebugLevel(GetParam().level);
    logAtEveryLevel();
    EXPECT_EQ(settledLogLines(),
              std::vector(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(GetParam().lines)));
}

INSTANTIATE_TEST_SUITE_P(Levels, Logger,
                         testing::Values(Level{-1, 0}, Level{0, 0}, Level{1, 1}, Level{2, 2}, Level{3, 3},
                                         Level{4, 4}, Level{99, 4}),
                         [](const auto& row) { return "Level" + std::to_string(row.param.level + 1); });

TEST(DefaultLevel, WritesErrorsAndWarnings)
{
    expectLog("error");
    expectLog("warning");
    logAtEveryLevel();
    EXPECT_EQ(settledLogLines().size(), 2U);
}

TEST(UserProfile, HoldsWhatWasSetAndNothingElse)
{
    const auto profile = VIRLOUserProfile::sharedProfile();
    profile->reset();
    EXPECT_EQ(profile->profileDictionary(), JSON::object());
    EXPECT_EQ(profile->age(), 0U);
    EXPECT_TRUE(profile->keywords().empty());
    EXPECT_EQ(profile->profileDictionary(), JSON({{"keywords", JSON::array()}})) << "reading makes the list";

    profile->setAge(30);
    profile->setGender("caf\xe9");
    for (const char* keyword : {"a", "b", "a"})
        profile->addKeyword(keyword);
    EXPECT_EQ(profile->keywords(), (std::vector<std::string>{"a", "b", "a"}));
    profile->removeKeyword("a");
    EXPECT_EQ(profile->profileDictionary(),
              JSON({{"age", 30}, {"gender", "caf\xef\xbf\xbd"}, {"keywords", {"b"}}}));
    profile->reset();
    profile->removeKeyword("a");
    EXPECT_EQ(profile->profileDictionary(), JSON({{"keywords", JSON::array()}}));
    profile->reset();
}

} // namespace
} // namespace virlo::test
