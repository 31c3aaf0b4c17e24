#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace virlo::test
{

/// One run of vast-inspect to its end; after twenty seconds it is killed.
struct ToolRun {
    explicit ToolRun(const std::vector<std::string>& arguments);

    std::string output;
    int exitStatus = -1; ///< 124 after a time-out, -1 after a crash
    std::chrono::duration<double> processorTime{};
    double memoryMiB = 0; ///< the most that any run so far, or this process, has used
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
