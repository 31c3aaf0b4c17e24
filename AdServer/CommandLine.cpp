#include "CommandLine.h"

#include <charconv>
#include <functional>
#include <map>
#include <stdexcept>

namespace adserver
{

namespace
{

constexpr unsigned defaultPort = 8443;
constexpr unsigned defaultPagePort = 8444;

unsigned wholeNumber(const std::string& option, const std::string& word, unsigned most)
{
    unsigned value = 0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (failure != std::errc() || end != word.data() + word.size() || value > most)
        throw std::invalid_argument(option + " takes a whole number from 0 to " + std::to_string(most) +
                                    ", not \"" + word + '"');
    return value;
}

} // namespace

CommandLine CommandLine::read(const std::vector<std::string>& words)
{
    CommandLine line;
    line.options.port = defaultPort;
    using Taker = std::function<void(const std::string&)>;
    const std::map<std::string, Taker> takers{
        {"--port",
         [&](const auto& word) {
             line.options.port = static_cast<std::uint16_t>(wholeNumber("--port", word, 65535));
         }},
        {"--page-port",
         [&](const auto& word) {
             line.options.pagePort = static_cast<std::uint16_t>(wholeNumber("--page-port", word, 65535));
         }},
        {"--live-view", [&](const auto& word) { line.options.liveView = word; }},
        {"--replay", [&](const auto& word) { line.options.replayFile = word; }},
        {"--state", [&](const auto& word) { line.options.stateFolder = word; }},
        {"--campaigns", [&](const auto& word) { line.options.campaignsFolder = word; }},
        {"--log", [&](const auto& word) { line.options.logFile = word; }},
        {"--ready-file", [&](const auto& word) { line.readyFile = word; }},
        {"--faults", [&](const auto& word) { line.faultsFile = word; }},
    };
    const std::map<std::string, bool*> switches{{"--help", &line.help},
                                                {"--http", &line.options.plainHTTP},
                                                {"--check-campaigns", &line.checkCampaigns}};

    for (auto word = words.begin(); word != words.end(); ++word) {
        if (const auto found = switches.find(*word); found != switches.end()) {
            *found->second = true;
            continue;
        }
        const auto taker = takers.find(*word);
        if (taker == takers.end())
            throw std::invalid_argument("there is no option \"" + *word + '"');
        if (word + 1 == words.end() || (word + 1)->empty())
            throw std::invalid_argument(*word + " needs a value");
        taker->second(*++word);
    }
    if (!line.options.pagePort)
        line.options.pagePort =
            static_cast<std::uint16_t>(line.options.port == defaultPort ? defaultPagePort : 0);
    if (line.checkCampaigns && line.options.campaignsFolder.empty())
        throw std::invalid_argument("--check-campaigns needs --campaigns");
    return line;
}

std::string CommandLine::usage()
{
    return R"(Usage: ad-server [OPTION]...
A development ad server on 127.0.0.1. Runs until SIGINT or SIGTERM.

  --campaigns DIR        serve the campaign files (*.json) of DIR and the images beside them
  --check-campaigns      say what is wrong with them and end: 0 when nothing is, 2 otherwise
  --port N               listen on port N (default 8443; 0: any free one)
  --page-port N          show the inspector page on port N (default 8444, or any free one with a --port)
  --live-view URL        show the host's screen there, as its plugin virlostream serves it
  --replay FILE          serve the responses of a request log again
  --http                 plain HTTP in place of HTTPS
  --state DIR            keep the certificate authority in DIR
                         (default $XDG_STATE_HOME/virlo-ad-server or ~/.local/state/virlo-ad-server)
  --log FILE             append one JSON line for each request to FILE
  --faults FILE          set the faults of FILE: a JSON array, or an object with the array "faults"
  --ready-file FILE      write the base URL to FILE once connections are taken
  --help                 show this

Exit status: 0 stopped by a signal, 1 could not start, 2 wrong use or wrong campaigns.
)";
}

} // namespace adserver
