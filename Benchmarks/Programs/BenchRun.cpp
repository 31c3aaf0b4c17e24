// bench-run PROGRAM FILE: starts the program on the file again and again and prints the median of the
// milliseconds from its start to its end and the most memory that a run held, in MiB. Small itself, since a
// program's figure for memory begins with that of whoever started it.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

int main(int count, char** arguments)
{
    constexpr int most = 61;
    const int runs = std::getenv("VIRLO_BENCH_ONCE") != nullptr ? 1 : most;
    if (count != 3)
        return 2;
    alarm(50); // a run that hangs ends this process, and with it the round
    double milliseconds[most] = {};
    double mebibytes = 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        pid_t process = 0;
        if (posix_spawn(&process, arguments[1], &actions, nullptr, arguments + 1, environ) != 0)
            return 1;
        int status = 0;
        rusage usage{};
        if (wait4(process, &status, 0, &usage) != process || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
            return 1;
        milliseconds[run] =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        mebibytes = std::max(mebibytes, static_cast<double>(usage.ru_maxrss) / 1024);
    }
    std::sort(milliseconds, milliseconds + runs);
    std::printf("%.3f %.3f\n", milliseconds[runs / 2], mebibytes);
    return 0;
}
