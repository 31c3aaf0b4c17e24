#include "Inspection.h"

#include <cstdio>
#include <string>
#include <vector>

int main(int count, char** arguments)
{
    const auto options = InspectOptions::parse({arguments + 1, arguments + count});
    if (!options) {
        std::fputs(InspectOptions::usage, stderr);
        return 2;
    }
    if (options->helps)
        return std::fputs(InspectOptions::usage, stdout) < 0 ? 1 : 0;
    const auto outcome = Inspection::run(*options);
    // Only the command line may bring in text that is not UTF-8.
    const std::string text =
        outcome.report.dump(2, ' ', false, AdsReport::JSON::error_handler_t::replace) + '\n';
    const AdsReport::JSON::json_pointer reason("/error/userInfo/Reason");
    if (outcome.report.contains(reason))
        std::fprintf(stderr, "vast-inspect: %s\n", outcome.report[reason].get<std::string>().c_str());
    const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return outcome.hasError || !written ? 1 : 0;
}
