#pragma once

#include <cstddef>

namespace virlo
{

/// Memory for decoded pictures, straight from the system and straight back to it: pictures come and go by
/// megabytes, and the heap would keep what they leave. The block given back last waits a second for the next
/// picture, since a new one costs a fifth of what decoding does. Any thread.
class PictureMemory
{
public:
    struct Block {
        void* address = nullptr; ///< null where there is no memory
        std::size_t length = 0;
    };

    /// At least `length` bytes; what they hold is undefined.
    [[nodiscard]] static Block take(std::size_t length);
    static void giveBack(Block block);
};

} // namespace virlo
