#include "MediaTest.h"

#include <spawn.h>
#include <sys/wait.h>

#include <chrono>

extern char** environ;

namespace virlo::test
{

namespace
{

class PlayingProgram : public MediaTest
{
};

TEST_F(PlayingProgram, LeavesCleanlyAtAnyMoment)
{
    const auto item = served("exit.mp4", {.seconds = 1});
    const std::string file = server().authorityFile().string();
    // From before GStreamer is set up, over handshake and first picture, to steady play and the next item.
    for (const int moment : {0, 2, 5, 10, 20, 30, 50, 80, 120, 200, 400, 1050}) {
        const std::string milliseconds = std::to_string(moment);
        SCOPED_TRACE("after " + milliseconds + " ms");
        const char* arguments[] = {VIRLO_MEDIA_EXIT_PROGRAM, item->url().absoluteString().c_str(),
                                   file.c_str(), milliseconds.c_str(), nullptr};
        const auto start = std::chrono::steady_clock::now();
        pid_t child = 0;
        ASSERT_EQ(::posix_spawn(&child, arguments[0], nullptr, nullptr, const_cast<char* const*>(arguments),
                                environ),
                  0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
}

} // namespace

} // namespace virlo::test
