#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// VAST documents made for measuring, each one different.
struct VASTDocuments {
    std::vector<std::string> texts;
    std::size_t bytes = 0;
    std::size_t records = 0; ///< ads, creatives, impressions, videos and tracking addresses in them

    /// Of 3 KB each: one ad, 12 tracking addresses and 3 videos.
    [[nodiscard]] static VASTDocuments small(int count);
    /// One of 1.2 MB: 200 ads of 24 tracking addresses and 4 videos each.
    [[nodiscard]] static VASTDocuments large();
};
