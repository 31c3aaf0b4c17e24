#include "SystemLog.h"

#include "LogCapture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using testing::ExitedWithCode;

TEST(SystemLog, NothingFromOutsideCanForgeALine)
{
    allowLog(testing::_);
    systemLog("plain äöü 🎬\n");
    systemLog("a\nb\r\tc\x1b[31m\x7f");
    systemLog(std::string_view("nul\0byte", 8));
    systemLog("next\xc2\x85line \xe2\x80\xa8 bad \xff\xc0\xaf\xed\xa0\x80 cut \xe2\x82");
    EXPECT_THAT(logLines(),
                ElementsAre("plain äöü 🎬", R"(a\nb\r\tc\x1b[31m\x7f)", R"(nul\x00byte)",
                            R"(next\xc2\x85line \xe2\x80\xa8 bad \xff\xc0\xaf\xed\xa0\x80 cut \xe2\x82)"));
}

class SystemLogDeathTest : public testing::Test
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(SystemLogDeathTest, ClosedPipeOnStandardErrorDoesNotEndTheHost)
{
    EXPECT_EXIT(
        {
            setSystemLogSink(nullptr);
            std::signal(SIGPIPE, SIG_DFL);
            int ends[2];
            const int kept = dup(STDERR_FILENO);
            if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
                std::_Exit(1);
            close(ends[0]);
            systemLog("nobody reads this");
            dup2(kept, STDERR_FILENO);
            systemLog("still here");
            std::_Exit(0);
        },
        ExitedWithCode(0), "still here");
}

TEST_F(SystemLogDeathTest, ReaderThatStoppedReadingDoesNotBlockTheHostForEver)
{
    EXPECT_EXIT(
        {
            setSystemLogSink(nullptr);
            int ends[2];
            if (pipe2(ends, O_NONBLOCK) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
                std::_Exit(1);
            systemLog(std::string(1'000'000, 'x'));
            std::_Exit(0);
        },
        ExitedWithCode(0), "");
}

TEST_F(SystemLogDeathTest, SinkMayLogAndThrow)
{
    EXPECT_EXIT(
        {
            setSystemLogSink([](std::string_view message) {
                systemLog("from the sink: " + std::string(message));
                throw std::runtime_error("lost");
            });
            systemLog("first");
            systemLog("second");
            setSystemLogSink(nullptr);
            std::_Exit(0);
        },
        ExitedWithCode(0), "from the sink: first\n.*from the sink: second\n");
}

} // namespace

} // namespace virlo::test
