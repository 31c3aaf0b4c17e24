#include "FreeMemory.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <malloc.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace virlo
{

namespace
{

/// Above this heap size `malloc_trim`, which holds the lock of the heap that the main thread allocates from,
/// could take longer than a frame: 84 ms were measured with 700 MiB.
constexpr std::ptrdiff_t largestTrimmedHeap = std::ptrdiff_t{32} << 20;

std::ptrdiff_t heapSize()
{
    constexpr int fieldsBefore = 44; // of the heap's start, after the program's name
    std::string line;
    std::getline(std::ifstream("/proc/self/stat"), line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string skipped;
    for (int field = 0; field < fieldsBefore; ++field)
        fields >> skipped;
    std::uintptr_t start = 0;
    fields >> start;
    return static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(::sbrk(0)) - start);
}

} // namespace

void returnFreeMemory()
{
#ifdef __GLIBC__
    if (heapSize() <= largestTrimmedHeap)
        malloc_trim(0);
#endif
}

} // namespace virlo
