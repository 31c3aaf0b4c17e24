#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace adserver
{

/// A VAST document as a campaign describes it; never changes after it was read.
struct VASTDocument {
    struct MediaFile {
        std::string url = {};
        std::string type = {};
        std::string delivery = "progressive";
        std::uint64_t width = 0;
        std::uint64_t height = 0;
        std::optional<std::uint64_t> bitrate = {};
    };

    struct Creative {
        /// "AdID" of the document.
        std::string id = {};
        std::optional<std::uint64_t> sequence = {};
        std::optional<std::chrono::milliseconds> duration = {};
        /// What is tracked.
        std::vector<std::string> events = allEvents();
        std::vector<MediaFile> mediaFiles = {};
    };

    struct Ad {
        std::string id = {};
        std::string system = {};
        std::string systemVersion = {};
        std::string title = {};
        std::uint64_t impressions = 1;
        /// The document that a wrapper names; empty: the ad is inline.
        std::string wraps = {};
        std::vector<Creative> creatives = {};
    };

    std::string version = "3.0";
    /// How many times the document stands one behind the other: in each but the last the wrappers name the
    /// next.
    std::uint64_t steps = 1;
    /// It ends in its middle.
    bool broken = false;
    std::vector<Ad> ads = {};

    /// Those of a linear creative that clients know.
    [[nodiscard]] static const std::vector<std::string>& allEvents();
};

/// Documents are /vast/NAME, and /vast/NAME/STEP from the second step on.
inline constexpr auto vastPath = "/vast/";
/// What documents track is /ping/NAME/AD/WHAT, or /ping/NAME/AD/CREATIVE/WHAT.
inline constexpr auto pingPath = "/ping/";

/// The document's name in an address below `vastPath`; nothing in any other.
[[nodiscard]] std::optional<std::string> documentNamedBy(const std::string& address);

} // namespace adserver
