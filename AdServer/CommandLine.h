#pragma once

#include "AdServerOptions.h"

#include <filesystem>
#include <string>
#include <vector>

namespace adserver
{

/// The options of `ad-server`.
struct CommandLine {
    AdServerOptions options;
    /// Gets the base URL once connections are taken.
    std::filesystem::path readyFile;
    /// Faults from the start on, in the form of the control path; empty: none.
    std::filesystem::path faultsFile;
    bool help = false;
    bool checkCampaigns = false;

    /// Throws std::invalid_argument naming the wrong word and what was expected.
    [[nodiscard]] static CommandLine read(const std::vector<std::string>& words);
    [[nodiscard]] static std::string usage();
};

} // namespace adserver
