#include "LoopbackServer.h"

#include <gtest/gtest.h>

#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>

namespace virlo::test
{
namespace
{

TEST(ProcessExit, WithExchangesUnderWayNeitherCrashesNorHangs)
{
    const char* program = std::getenv("VIRLO_EXIT_PROGRAM");
    if (program == nullptr)
        GTEST_SKIP() << "VIRLO_EXIT_PROGRAM names no program; CTest sets it";
    const TestAuthority authority;
    LoopbackServer server(&authority);
    server.routes().Get("/",
                        [](const auto&, auto& response) { response.set_content("{}", "application/json"); });
    server.start();

    // From before the I/O thread has set itself up, over handshakes, to steady traffic.
    for (const int microseconds :
         {0, 200, 500, 1000, 2000, 3000, 5000, 8000, 12'000, 20'000, 50'000, 100'000}) {
        const std::string url = server.url("/");
        const std::string file = authority.file();
        const std::string delay = std::to_string(microseconds);
        const char* arguments[] = {program, url.c_str(), file.c_str(), delay.c_str(), nullptr};
        const auto start = std::chrono::steady_clock::now();
        pid_t child = 0;
        ASSERT_EQ(
            ::posix_spawn(&child, program, nullptr, nullptr, const_cast<char* const*>(arguments), environ),
            0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
            << "status " << status << " after " << delay;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
}

} // namespace
} // namespace virlo::test
