#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace virlo::test
{

/// One run of vast-inspect to its end. A run of more than twenty seconds is killed and fails the test.
struct ToolRun {
    explicit ToolRun(const std::vector<std::string>& arguments) { run(arguments); }

    std::string output;
    int exitStatus = -1; ///< -1 where it was killed or crashed
    std::chrono::duration<double> processorTime{};
    double memoryMiB = 0; ///< the most that it, or this process until its start, held at a time

private:
    void run(const std::vector<std::string>& arguments);
};

/// Under a sanitizer time and memory say nothing.
[[nodiscard]] constexpr bool measures()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    return true;
#endif
}

} // namespace virlo::test
