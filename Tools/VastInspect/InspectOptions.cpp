#include "InspectOptions.h"

const char* const InspectOptions::usage =
    R"(usage: vast-inspect [--no-merge] [--timing] [--explain] FILE-or-URL

Reads a VAST document as the library does, follows its wrappers and prints
what comes out as one JSON object.
  --no-merge  shows wrappers as they stand and fetches nothing for them
  --timing    adds the milliseconds that each document took
  --explain   adds what was passed over in each document and which of its ads
              were dropped in merging, and why
Exits with 1 where an error is reported, with 2 for wrong usage.
)";

std::optional<InspectOptions> InspectOptions::parse(const std::vector<std::string>& arguments)
{
    InspectOptions options;
    bool onlySource = false;
    for (const std::string& argument : arguments) {
        if (onlySource || !argument.starts_with("--")) {
            if (!options.source.empty() || argument.empty())
                return std::nullopt;
            options.source = argument;
        } else if (argument == "--") {
            onlySource = true;
        } else if (argument == "--no-merge") {
            options.merges = false;
        } else if (argument == "--timing") {
            options.times = true;
        } else if (argument == "--explain") {
            options.explains = true;
        } else if (argument == "--help") {
            options.helps = true;
        } else {
            return std::nullopt;
        }
    }
    if (options.source.empty() && !options.helps)
        return std::nullopt;
    return options;
}
