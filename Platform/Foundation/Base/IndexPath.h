#pragma once

namespace virlo
{

/// The position of an element in a list of sections.
struct IndexPath {
    long section = 0;
    long row = 0;

    friend bool operator==(const IndexPath&, const IndexPath&) = default;
};

} // namespace virlo
