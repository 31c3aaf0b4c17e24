#pragma once

#include "AdServerExchange.h"

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

/// The exchanges in memory and, with a file, on disk: one JSON line each, flushed. Safe from any thread. Of
/// those in memory the oldest go when there are more than `mostKept`.
class ExchangeLog
{
public:
    static constexpr std::size_t mostKept = 20'000;

    /// Throws std::runtime_error when the file cannot be opened for appending; an empty path writes none.
    void open(const std::filesystem::path& file);

    void note(const AdServerExchange& exchange);
    void clear();
    [[nodiscard]] std::vector<AdServerExchange> exchanges() const;
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::vector<AdServerExchange>&)>& condition,
                                 std::chrono::milliseconds timeout) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<AdServerExchange> m_exchanges;
    std::ofstream m_file;
    std::atomic<bool> m_writes = false;
    bool m_complained = false;
};

} // namespace adserver
