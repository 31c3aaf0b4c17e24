#include "InspectOptions.h"

#include <charconv>

const char* const InspectOptions::usage =
    R"(usage: vast-inspect [--no-merge] [--timing] [--explain] [--limit N]
                    [--known URL FILE]… FILE-or-URL

Reads a VAST document as the library does, follows its wrappers and prints
the result as one JSON object.
  --no-merge  keeps wrappers unresolved and requests nothing for them
  --timing    adds the milliseconds that each document took
  --explain   adds what was ignored in each document and which of its ads were
              dropped in merging, and why
  --limit N   stops after N documents (default: 200). From the 200th on the
              library waits before each: 10 ms, then twice as long each time,
              at most a minute
  --known URL FILE
              reads the document at URL from FILE, and those of other URLs not at
              all; may be repeated
Exit status: 1 if an error is reported or the limit is reached, 2 for wrong
usage.
)";

namespace
{
bool readCount(const std::string& text, std::size_t& count)
{
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, count);
    return result.ec == std::errc() && result.ptr == end && count > 0;
}
} // namespace

std::optional<InspectOptions> InspectOptions::parse(const std::vector<std::string>& arguments)
{
    InspectOptions options;
    bool onlySource = false;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (onlySource || !argument->starts_with("--")) {
            if (!options.source.empty() || argument->empty())
                return std::nullopt;
            options.source = *argument;
        } else if (*argument == "--") {
            onlySource = true;
        } else if (*argument == "--no-merge") {
            options.merges = false;
        } else if (*argument == "--timing") {
            options.times = true;
        } else if (*argument == "--explain") {
            options.explains = true;
        } else if (*argument == "--help") {
            options.helps = true;
        } else if (*argument == "--known") {
            if (arguments.end() - argument < 3)
                return std::nullopt;
            const auto& url = *++argument;
            options.known[url] = *++argument;
        } else if (*argument == "--limit") {
            if (++argument == arguments.end() || !readCount(*argument, options.limit))
                return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    if (options.source.empty() && !options.helps)
        return std::nullopt;
    return options;
}
