#pragma once

#include "RequestLogEntry.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <vector>

namespace adserver
{

/// The requests in memory and, with a file, on disk: one JSON line each, flushed. Safe from any thread. Of
/// those in memory the oldest go when there are more than `mostKept`.
class RequestLog
{
public:
    static constexpr std::size_t mostKept = 20'000;

    /// Throws std::runtime_error when the file cannot be opened for appending; an empty path writes none.
    void open(const std::filesystem::path& file);

    void append(const RequestLogEntry& entry);
    void clear();
    [[nodiscard]] std::vector<RequestLogEntry> requests() const;
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                                 std::chrono::milliseconds timeout) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<RequestLogEntry> m_entries;
    std::ofstream m_file;
    std::atomic<bool> m_writes = false;
    bool m_reportedFailure = false;
};

} // namespace adserver
