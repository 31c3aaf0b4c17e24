#pragma once

#include <functional>

namespace virlo::test
{

/// What a process holds at a moment.
struct Footprint {
    /// Its own memory, after the allocator gave back what it could. Pages of files are left out: their share
    /// changes with what other processes run.
    long kibibytes = 0;
    long threads = 0;
    long descriptors = 0;

    [[nodiscard]] static Footprint now();

    /// Sanitizers keep freed memory aside, which is no growth of ours.
    static constexpr bool memoryTells =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        false;
#else
        true;
#endif
};

/// Runs `show` to warm up, then for as many rounds as given, and expects the process to hold no more after
/// them than it did before, but for so much memory.
void expectNoGrowth(const std::function<void(int rounds)>& show, int warmUp, int rounds, long mostKibibytes);

/// Whether the long rounds were asked for.
[[nodiscard]] bool soaks();

} // namespace virlo::test
