#include "AdServer.h"
#include "CommandLine.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

enum ExitCode { stopped = 0, couldNotStart = 1, wrongUse = 2 };

/// From here on the signals come to sigwait() only; threads made later inherit that.
sigset_t holdSignalsBack()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void complain(const std::vector<std::string>& lines)
{
    for (const auto& line : lines)
        std::cerr << "ad-server: " << line << '\n';
}

void announce(const adserver::AdServer& server, const adserver::CommandLine& line)
{
    if (!line.readyFile.empty()) {
        const auto draft = line.readyFile.string() + ".new";
        std::ofstream(draft) << server.baseURL() << '\n';
        std::filesystem::rename(draft, line.readyFile);
    }
    if (!server.authorityFile().empty())
        std::cout << "trust the authority in " << server.authorityFile().string() << '\n';
    if (line.options.campaignsFolder.empty())
        std::cout << "no campaigns: every request for an ad gets NO_AD\n";
    std::cout << "inspector on " << server.pageURL() << '\n';
    std::cout << "listening on " << server.baseURL() << std::endl;
}

void setFaults(adserver::AdServer& server, const std::filesystem::path& file)
{
    std::ifstream stream(file);
    if (!stream)
        throw std::runtime_error("cannot read the faults in " + file.string());
    const auto found = nlohmann::json::parse(stream);
    for (const nlohmann::json& fault :
         found.is_object() ? found.value("faults", nlohmann::json::array()) : found)
        server.setFault(adserver::AdServerFault::fromJSON(fault));
}

int serve(const adserver::CommandLine& line)
{
    const auto signals = holdSignalsBack();
    adserver::AdServer server(line.options);
    if (!line.faultsFile.empty())
        setFaults(server, line.faultsFile);
    server.start();
    complain(server.campaignErrors());
    announce(server, line);
    int signal = 0;
    sigwait(&signals, &signal);
    server.stop();
    return stopped;
}

int checkCampaigns(const adserver::CommandLine& line)
{
    const auto errors = adserver::AdServer::checkCampaigns(line.options.campaignsFolder);
    complain(errors);
    return errors.empty() ? stopped : wrongUse;
}

} // namespace

int main(int count, char** words)
{
    adserver::CommandLine line;
    try {
        line = adserver::CommandLine::read({words + 1, words + count});
    } catch (const std::invalid_argument& error) {
        complain({error.what(), "see ad-server --help"});
        return wrongUse;
    }
    if (line.help) {
        std::cout << adserver::CommandLine::usage();
        return stopped;
    }
    try {
        return line.checkCampaigns ? checkCampaigns(line) : serve(line);
    } catch (const std::exception& error) {
        complain({error.what()});
        return couldNotStart;
    }
}
