#include "ChildProcess.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ;

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::map<std::string, std::string>& environment)
{
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for " + command.front());

    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (!environment.contains(text.substr(0, text.find('='))))
            variables.push_back(text);
    }
    for (const auto& [name, value] : environment)
        variables.push_back(name + "=" + value);

    std::vector<char*> arguments;
    std::vector<char*> environmentPointers;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    for (const std::string& variable : variables)
        environmentPointers.push_back(const_cast<char*>(variable.c_str()));
    arguments.push_back(nullptr);
    environmentPointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    const int failure = posix_spawn(&m_process, command.front().c_str(), &actions, nullptr, arguments.data(),
                                    environmentPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
    if (failure != 0)
        throw std::runtime_error("cannot start " + command.front());
}

ChildProcess::~ChildProcess()
{
    close(m_input);
    close(m_output);
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
}

void ChildProcess::writeLine(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the measured program does not listen");
}

std::string ChildProcess::readLine()
{
    constexpr int minute = 60'000;
    for (;;) {
        const auto end = m_pending.find('\n');
        if (end != std::string::npos) {
            std::string line = m_pending.substr(0, end);
            m_pending.erase(0, end + 1);
            return line;
        }
        pollfd waited{m_output, POLLIN, 0};
        char buffer[4096];
        if (poll(&waited, 1, minute) <= 0)
            throw std::runtime_error("the measured program says nothing");
        const ssize_t count = read(m_output, buffer, sizeof buffer);
        if (count <= 0)
            throw std::runtime_error("the measured program ended");
        m_pending.append(buffer, static_cast<std::size_t>(count));
    }
}

int ChildProcess::awaitEnd()
{
    int status = 0;
    waitpid(std::exchange(m_process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double ChildProcess::pssMiB() const
{
    return rollupMiB("Pss:");
}

double ChildProcess::residentMiB() const
{
    return rollupMiB("Rss:");
}

double ChildProcess::writtenMiB() const
{
    return rollupMiB("Private_Dirty:");
}

double ChildProcess::rollupMiB(const std::string& field) const
{
    std::ifstream rollup("/proc/" + std::to_string(m_process) + "/smaps_rollup");
    for (std::string line; std::getline(rollup, line);) {
        std::istringstream words(line);
        std::string name;
        double kibibytes = 0;
        if (words >> name >> kibibytes && name == field)
            return kibibytes / 1024;
    }
    throw std::runtime_error("no " + field + " of the measured program");
}

double ChildProcess::processorSeconds() const
{
    std::ifstream file("/proc/" + std::to_string(m_process) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::istringstream words(text.substr(text.rfind(')') + 1));
    std::string skipped;
    for (int field = 3; field < 14; ++field)
        words >> skipped;
    double user = 0;
    double system = 0;
    words >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

std::string programFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}
