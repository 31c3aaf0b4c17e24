#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

/// Another program at work for a measurement: spoken to by lines on its standard input and output. Killed
/// when this object goes.
class ChildProcess
{
public:
    /// Throws std::runtime_error where it cannot be started. `environment` is added to this process's own.
    explicit ChildProcess(const std::vector<std::string>& command,
                          const std::map<std::string, std::string>& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void writeLine(const std::string& line);
    /// The next line of its output; throws std::runtime_error when it ends, or says nothing for a minute.
    std::string readLine();

    /// Waits for its end; returns its exit status, -1 where a signal ended it.
    int awaitEnd();

    /// Its share of memory: pages of its own, and of those it shares with others its part.
    [[nodiscard]] double pssMiB() const;
    /// All pages of it that are in memory.
    [[nodiscard]] double residentMiB() const;
    /// Its pages that no other process shares and no file holds.
    [[nodiscard]] double writtenMiB() const;
    /// Time on a processor since its start.
    [[nodiscard]] double processorSeconds() const;

private:
    [[nodiscard]] double rollupMiB(const std::string& field) const;

    pid_t m_process = -1;
    int m_input = -1;
    int m_output = -1;
    std::string m_pending;
};

/// The folder of this program, where the other programs are.
[[nodiscard]] std::string programFolder();
