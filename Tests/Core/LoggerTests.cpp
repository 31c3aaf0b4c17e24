#include "LogCapture.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOUserProfile.h"

#include <gmock/gmock.h>

#include <algorithm>

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

TEST(Logger, WritesTheMessagesOfItsLevelInOrder)
{
    const std::vector<std::string> all{"error %@ %d", "warning 2", "notice", "info"};
    for (const std::string& line : all)
        allowLog(line);
    for (const std::int64_t level : {-1, 0, 1, 2, 3, 4, 99}) {
        const auto before = settledLogLines().size();
        VIRLOAdFrameworkLogger::setDebugLevel(level);
        logAtEveryLevel();
        auto written = settledLogLines();
        written.erase(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(before));
        EXPECT_EQ(written, std::vector(all.begin(), all.begin() + std::clamp<std::int64_t>(level, 0, 4)));
    }
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

TEST(DefaultLevel, WritesErrorsAndWarningsAndFormatsEverything)
{
    struct Described {
        [[nodiscard]] std::string description() const { return std::to_string(++*formatted); }

        int* formatted;
    };

    int formatted = 0;
    VIRLOAdFrameworkLogger::logInfoWithFormat("%@", Described{&formatted});
    EXPECT_EQ(formatted, 1) << "on the caller's thread, at any level";
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
