#pragma once

#include <cstdint>
#include <string>

namespace adserver
{

/// What a "Range" header asks of a file.
struct ByteRange {
    enum class Kind {
        /// Everything: no header, one that cannot be read, or several ranges at once, which a server may
        /// ignore.
        whole,
        part,
        /// No byte of the file.
        outside,
    };

    Kind kind = Kind::whole;
    /// Both included.
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

[[nodiscard]] ByteRange readByteRange(const std::string& header, std::uint64_t size);

} // namespace adserver
