#pragma once

#include <optional>
#include <string>
#include <vector>

/// What the command line asks for.
struct InspectOptions {
    std::string source;
    bool merges = true;
    bool times = false;
    bool explains = false;
    bool helps = false;

    static const char* const usage;

    /// Nothing where the command line is wrong.
    [[nodiscard]] static std::optional<InspectOptions> parse(const std::vector<std::string>& arguments);
};
