#pragma once

#include "Clock.h"
#include "SessionState.h"
#include "TrustedAuthorities.h"

#include <curl/curl.h>

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace virlo
{

class Transfer;

/// The process's I/O thread, 'virlo-io': it runs every session's transfers over one libcurl multi handle and
/// sleeps while nothing moves. Started by the first use. There is one loop for the process and it is never
/// destroyed; when the process exits the thread is stopped, so that nothing of libcurl or OpenSSL runs while
/// their own exit handlers clean up. The public operations may be called from any thread and do not wait.
class TransferLoop
{
public:
    [[nodiscard]] static TransferLoop& shared();

    /// Starts the thread if it does not run yet, so that the first transfer finds libcurl ready.
    void warmUp();
    /// Ends the transfer at once where the system refuses the thread.
    void start(std::shared_ptr<Transfer> transfer);
    void cancel(std::shared_ptr<Transfer> transfer);
    void unpause(std::shared_ptr<Transfer> transfer);
    /// Cancels all of the session's transfers, those handed over before this call included.
    void cancelAll(std::shared_ptr<SessionState> session);

    /// Counted from a task's start to the return of its completion.
    void transferBegan();
    void transferEnded();
    /// Waits until no transfer is left, at most `limit`.
    bool drain(Seconds limit);

private:
    TransferLoop() = default;

    void enqueue(std::function<void()> command);
    [[nodiscard]] bool launch();
    void stop();

    // I/O thread
    void setUp();
    [[noreturn]] void run();
    void runCommands();
    void begin(const std::shared_ptr<Transfer>& transfer);
    void cancelAllNow(SessionState& session);
    /// Starts those that have waited longest, as far as the session's limit allows. Forgets an unused host.
    void admitWaiting(SessionState& session, SessionState::Hosts::iterator position);
    [[nodiscard]] bool admit(Transfer& transfer);
    /// Forgets a transfer whose outcome is settled, and starts another in its stead.
    void retire(const std::shared_ptr<Transfer>& transfer);
    void scheduleTimeout(const std::shared_ptr<Transfer>& transfer);
    void endTimedOut();
    void endFinished();
    void deliverFinished();
    [[nodiscard]] int millisecondsToTimeout() const;

    // Any thread
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_commands;
    CURLM* m_multi = nullptr; ///< set by the I/O thread, which alone uses it but for waking up
    bool m_launched = false;
    bool m_stopping = false;
    bool m_stopped = false;
    std::condition_variable m_stopChanged;
    std::size_t m_transfers = 0;
    std::condition_variable m_transfersChanged;

    // I/O thread
    CURLSH* m_share = nullptr;
    TrustedAuthorities m_authorities;
    std::set<std::pair<Clock::Instant, std::shared_ptr<Transfer>>> m_timeouts; ///< by Transfer::timeoutCheck
    std::vector<std::shared_ptr<Transfer>> m_finished;                         ///< in this round
};

} // namespace virlo
