#include "SerialQueue.h"

#include "Exception.h"
#include "Guarded.h"
#include "WorkerPool.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace virlo
{

namespace
{

/// Tasks that a worker runs in a row before other queues get their turn.
constexpr int batch = 32;

/// A `sync` caller that sleeps until it owns the queue.
struct Waiter {
    std::condition_variable given;
    bool isOwner = false;
    std::thread::id thread = std::this_thread::get_id();
};

/// An `async` task, or the position of a `sync` caller, which runs its work itself.
struct Task {
    std::function<void()> work;
    Waiter* waiter = nullptr;
};

} // namespace

/// The thread that runs tasks owns the queue. When it gives the queue up, the first sleeping `sync` caller
/// becomes the owner, or else a worker is asked for.
class SerialQueue::State : public std::enable_shared_from_this<State>
{
public:
    explicit State(std::string label) : m_label(std::move(label)) {}

    [[nodiscard]] const std::string& label() const noexcept { return m_label; }

    [[nodiscard]] bool isCurrent() const noexcept
    {
        return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }

    void async(std::function<void()> work)
    {
        std::unique_lock lock(m_mutex);
        m_tasks.push_back({std::move(work), nullptr});
        if (m_unfinished++ == 0)
            WorkerPool::shared().enter();
        if (!m_owned)
            askForWorker(lock);
    }

    void sync(const std::function<void()>& work)
    {
        if (isCurrent())
            raise(Exception::internalInconsistency,
                  "sync from a task of the queue \"" + m_label + "\" itself");
        std::unique_lock lock(m_mutex);
        if (m_owned) {
            waitForOwnership(lock);
        } else {
            own(std::this_thread::get_id());
            for (auto ahead = m_tasks.size(); ahead > 0; --ahead)
                runFirst(lock);
        }
        lock.unlock();
        const Ownership ownership(*this);
        work();
    }

private:
    /// Gives the queue up also where the work throws.
    class Ownership
    {
    public:
        explicit Ownership(State& state) : m_state(state) {}

        ~Ownership()
        {
            std::unique_lock lock(m_state.m_mutex);
            m_state.giveUp(lock);
        }

        Ownership(const Ownership&) = delete;
        Ownership& operator=(const Ownership&) = delete;

    private:
        State& m_state;
    };

    void own(std::thread::id thread)
    {
        m_owned = true;
        m_owner.store(thread, std::memory_order_relaxed);
    }

    void waitForOwnership(std::unique_lock<std::mutex>& lock)
    {
        Waiter waiter;
        m_tasks.push_back({{}, &waiter});
        ++m_waiters;
        waiter.given.wait(lock, [&waiter] { return waiter.isOwner; });
        while (m_tasks.front().waiter == nullptr)
            runFirst(lock);
        m_tasks.pop_front();
        --m_waiters;
    }

    /// Runs the first task, which is no waiter; the lock is not held while it runs and is destroyed.
    void runFirst(std::unique_lock<std::mutex>& lock)
    {
        auto work = std::move(m_tasks.front().work);
        m_tasks.pop_front();
        lock.unlock();
        runGuarded(work, m_label.c_str());
        work = nullptr;
        lock.lock();
        if (--m_unfinished == 0)
            WorkerPool::shared().leave();
    }

    void runBatch()
    {
        std::unique_lock lock(m_mutex);
        m_hasWorkerComing = false;
        if (m_owned || m_tasks.empty())
            return;
        own(std::this_thread::get_id());
        for (int count = 0; count < batch && !m_tasks.empty() && m_tasks.front().waiter == nullptr; ++count)
            runFirst(lock);
        giveUp(lock);
    }

    void giveUp(std::unique_lock<std::mutex>& lock)
    {
        if (m_waiters > 0) {
            Waiter& waiter = firstWaiter();
            own(waiter.thread);
            waiter.isOwner = true;
            waiter.given.notify_one(); // under the lock: the waiter lives on its caller's stack
            return;
        }
        m_owned = false;
        m_owner.store({}, std::memory_order_relaxed);
        if (!m_tasks.empty())
            askForWorker(lock);
    }

    [[nodiscard]] Waiter& firstWaiter()
    {
        auto task = m_tasks.begin();
        while (task->waiter == nullptr)
            ++task;
        return *task->waiter;
    }

    void askForWorker(std::unique_lock<std::mutex>& lock)
    {
        if (std::exchange(m_hasWorkerComing, true))
            return;
        lock.unlock();
        WorkerPool::shared().submit(WorkerPool::Priority::Serial,
                                    [self = shared_from_this()] { self->runBatch(); });
    }

    const std::string m_label;
    std::mutex m_mutex;
    std::deque<Task> m_tasks;
    std::size_t m_waiters = 0;
    std::size_t m_unfinished = 0; ///< tasks given by `async`
    bool m_owned = false;
    bool m_hasWorkerComing = false;
    std::atomic<std::thread::id> m_owner; ///< compared by each thread with its own id only
};

SerialQueue::SerialQueue(std::string label) : m_state(std::make_shared<State>(std::move(label))) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::async(std::function<void()> work)
{
    m_state->async(std::move(work));
}

void SerialQueue::sync(const std::function<void()>& work)
{
    const auto state = m_state; // the work may release the queue itself
    state->sync(work);
}

void SerialQueue::after(Seconds delay, std::function<void()> work)
{
    Clock::shared().schedule(
        delay, [state = m_state, work = std::move(work)]() mutable { state->async(std::move(work)); });
}

const std::string& SerialQueue::label() const noexcept
{
    return m_state->label();
}

bool SerialQueue::isCurrent() const noexcept
{
    return m_state->isCurrent();
}

} // namespace virlo
