#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace adserver
{

/// A thread for each connection, made when none is idle and kept until the shutdown; above `maximum`
/// connections the next ones wait. Owned by the HTTP listener's accepting thread.
class WorkerPool final : public httplib::TaskQueue
{
public:
    static constexpr std::size_t maximum = 512;

    void enqueue(std::function<void()> work) override;
    /// Waits for all threads; what is still queued is run first.
    void shutdown() override;

private:
    void run();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_queue;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_ending = false;
};

} // namespace adserver
