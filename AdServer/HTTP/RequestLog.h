#pragma once

#include "EventFeed.h"
#include "RequestLogEntry.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace adserver
{

/// The requests in memory and, with a file, on disk: one JSON line each, flushed. Safe from any thread. Of
/// those in memory the older half goes when there are more than `mostKept`, or their bodies exceed
/// `mostBytes`. Each change goes to the feed: "began" and "ended" with the entry's summary, and "cleared".
class RequestLog
{
public:
    static constexpr std::size_t mostKept = 20'000;
    static constexpr std::size_t mostBytes = std::size_t{128} << 20U;

    /// Throws std::runtime_error when the file cannot be opened for appending; an empty path writes none.
    void open(const std::filesystem::path& file);

    /// Numbers the entry and tells that its request has come.
    void begin(RequestLogEntry& entry);
    /// Dates the entry's end.
    void append(RequestLogEntry entry);
    void clear();
    [[nodiscard]] std::vector<RequestLogEntry> requests() const;
    /// All summaries as one JSON array. Kept as text: making 10,000 of them anew took a page half a second.
    [[nodiscard]] std::string summaries() const;
    [[nodiscard]] std::optional<RequestLogEntry> find(std::uint64_t identifier) const;
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                                 std::chrono::milliseconds timeout) const;

    [[nodiscard]] EventFeed& feed() { return m_feed; }

private:
    EventFeed m_feed;
    std::atomic<std::uint64_t> m_lastIdentifier = 0;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<RequestLogEntry> m_entries;
    std::vector<std::string> m_summaries; ///< of each entry
    std::size_t m_bytes = 0;              ///< of the entries' bodies
    std::ofstream m_file;
    std::atomic<bool> m_writes = false;
    bool m_reportedFailure = false;
};

} // namespace adserver
