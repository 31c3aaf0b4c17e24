#include "Footprint.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>

namespace virlo::test
{

namespace
{

long entriesOf(const char* folder)
{
    return static_cast<long>(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
}

} // namespace

Footprint Footprint::now()
{
    malloc_trim(0);
    Footprint now{0, entriesOf("/proc/self/task"), entriesOf("/proc/self/fd")};
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string word; rollup >> word;) {
        if (word == "Pss_Anon:")
            rollup >> now.kibibytes;
    }
    return now;
}

void expectNoGrowth(const std::function<void(int rounds)>& show, int warmUp, int rounds, long mostKibibytes)
{
    show(warmUp);
    const Footprint before = Footprint::now();
    show(rounds);
    const Footprint after = Footprint::now();
    testing::Test::RecordProperty("growth_kib", static_cast<int>(after.kibibytes - before.kibibytes));
    if (Footprint::memoryTells) {
        EXPECT_LT(after.kibibytes - before.kibibytes, mostKibibytes);
    }
    EXPECT_LE(after.threads, before.threads + 8);         // workers come and go
    EXPECT_LE(after.descriptors, before.descriptors + 6); // as do kept connections
}

bool soaks()
{
    return std::getenv("VIRLO_SOAK") != nullptr;
}

} // namespace virlo::test
