#include "PictureMemory.h"

#include "GlobalQueue.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

struct Waiting {
    std::mutex mutex;
    PictureMemory::Block block;
    std::uint64_t number = 0; ///< of the blocks that have waited
};

/// Never destroyed: pictures may outlive the process's statics.
Waiting& waiting()
{
    static auto* const shared = new Waiting;
    return *shared;
}

void unmap(PictureMemory::Block block)
{
    if (block.address != nullptr)
        munmap(block.address, block.length);
}

std::size_t roundedUp(std::size_t value, std::size_t unit)
{
    return (value + unit - 1) / unit * unit;
}

/// Begins where a huge page may: a picture of a full screen is otherwise paged in by two thousand faults.
PictureMemory::Block map(std::size_t length)
{
    constexpr std::size_t hugePage = std::size_t{2} << 20;
    const std::size_t room = length + hugePage;
    void* const mapped = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return {};
    const auto address = reinterpret_cast<std::uintptr_t>(mapped);
    const std::size_t before = roundedUp(address, hugePage) - address;
    auto* const begin = static_cast<std::byte*>(mapped) + before;
    if (before > 0)
        munmap(mapped, before);
    if (before < hugePage)
        munmap(begin + length, hugePage - before);
    madvise(begin, length, MADV_HUGEPAGE); // a kernel without them goes on with what it has
    return {begin, length};
}

} // namespace

PictureMemory::Block PictureMemory::take(std::size_t length)
{
    length = roundedUp(length, static_cast<std::size_t>(sysconf(_SC_PAGESIZE)));
    {
        Waiting& kept = waiting();
        const std::lock_guard lock(kept.mutex);
        if (kept.block.length >= length && kept.block.length - length <= length / 4)
            return std::exchange(kept.block, {});
    }
    return map(length);
}

void PictureMemory::giveBack(Block block)
{
    Waiting& kept = waiting();
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(kept.mutex);
        std::swap(kept.block, block);
        number = ++kept.number;
    }
    unmap(block);
    GlobalQueue::background().after(Seconds(1), [&kept, number] {
        Block unused;
        {
            const std::lock_guard lock(kept.mutex);
            if (kept.number == number)
                std::swap(kept.block, unused);
        }
        unmap(unused);
    });
}

} // namespace virlo
