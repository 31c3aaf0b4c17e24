#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The parsed command line.
struct InspectOptions {
    std::string source;
    bool merges = true;
    bool times = false;
    bool explains = false;
    std::size_t limit = 200;                  ///< documents
    std::map<std::string, std::string> known; ///< URL → file
    bool helps = false;

    static const char* const usage;

    /// Empty where the command line is wrong.
    [[nodiscard]] static std::optional<InspectOptions> parse(const std::vector<std::string>& arguments);
};
