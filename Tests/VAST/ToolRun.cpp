#include "ToolRun.h"

#include <cstdio>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>

namespace virlo::test
{

namespace
{
rusage usageOfChildren()
{
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return usage;
}

std::chrono::microseconds processorTimeOf(const rusage& usage)
{
    return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}
} // namespace

ToolRun::ToolRun(const std::vector<std::string>& arguments)
{
    std::string command = "exec env TSAN_OPTIONS=atexit_sleep_ms=0 timeout 20 \"$VIRLO_VAST_INSPECT\"";
    for (const std::string& argument : arguments)
        command += " '" + argument + "'";
    const auto before = processorTimeOf(usageOfChildren());
    std::FILE* const pipe = ::popen((command + " 2>/dev/null").c_str(), "re");
    if (pipe == nullptr)
        throw std::runtime_error("no pipe");
    char bytes[65'536];
    while (const std::size_t count = std::fread(bytes, 1, sizeof bytes, pipe))
        output.append(bytes, count);
    const int status = ::pclose(pipe);
    exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    processorTime = processorTimeOf(usageOfChildren()) - before;
    memoryMiB = static_cast<double>(usageOfChildren().ru_maxrss) / 1024;
}

} // namespace virlo::test
