#include "ToolRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace virlo::test
{

void ToolRun::run(const std::vector<std::string>& arguments)
{
    using Clock = std::chrono::steady_clock;
    const char* const program = std::getenv("VIRLO_VAST_INSPECT");
    if (program == nullptr) {
        ADD_FAILURE() << "VIRLO_VAST_INSPECT names no program; CTest sets it";
        return;
    }
    std::vector<char*> pointers{const_cast<char*>(program)};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);

#if defined(__SANITIZE_THREAD__)
    ::setenv("TSAN_OPTIONS", "atexit_sleep_ms=0", 1);
#endif
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int failure = ::posix_spawn(&process, program, &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    ASSERT_EQ(failure, 0) << program;

    const auto end = Clock::now() + std::chrono::seconds(20);
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waited{ends[0], POLLIN, 0};
        if (left <= 0 || ::poll(&waited, 1, static_cast<int>(left)) <= 0) {
            ADD_FAILURE() << "the tool does not end";
            ::kill(process, SIGKILL);
            break;
        }
        char bytes[65'536];
        const ssize_t count = ::read(ends[0], bytes, sizeof bytes);
        if (count <= 0)
            break;
        output.append(bytes, static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    int status = 0;
    rusage usage{};
    ASSERT_EQ(::wait4(process, &status, 0, &usage), process);
    for (const timeval& part : {usage.ru_utime, usage.ru_stime})
        processorTime += std::chrono::seconds(part.tv_sec) + std::chrono::microseconds(part.tv_usec);
    memoryMiB = static_cast<double>(usage.ru_maxrss) / 1024;
    if (WIFEXITED(status))
        exitStatus = WEXITSTATUS(status);
}

} // namespace virlo::test
