#pragma once

#include "Clock.h"
#include "HandlePool.h"
#include "SessionState.h"
#include "SocketPoll.h"
#include "TrustedAuthorities.h"

#include <curl/curl.h>

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace virlo
{

class Transfer;

/// The process's I/O thread, 'virlo-io': it runs every session's transfers over one libcurl multi handle,
/// sleeps in epoll while nothing moves, and is started by the first use. Between its rounds it does the work
/// that the answers give rise to, as one of the pool's helpers; where a piece of it takes long, another
/// thread leads the loop from there on. There is one loop for the process and it is never destroyed; at the
/// process's exit the thread is halted where it stands, so that nothing of libcurl or OpenSSL runs while
/// their own exit handlers tear them down. The public operations may be called from any thread and wait for
/// nothing.
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
    void exchangeBegan();
    void exchangeEnded();
    /// Waits until no exchange is under way, at most `limit`.
    bool drain(Seconds limit);

private:
    struct Command {
        enum class Kind { Start, Cancel, Unpause, CancelAll } kind;
        std::shared_ptr<Transfer> transfer;
        std::shared_ptr<SessionState> session;
    };

    TransferLoop() = default;

    void enqueue(Command command);
    [[nodiscard]] bool launch();
    void halt();

    void setUp();
    /// Until another thread leads.
    void lead();
    void waitForEvents();
    void execute(const Command& command);

    void cancelAllOnLoop(SessionState& session);
    void begin(const std::shared_ptr<Transfer>& transfer);
    /// Gives the host's free places to those who wait longest. Forgets a host with nothing under way.
    void admitWaiting(SessionState& session, SessionState::Hosts::iterator position);
    [[nodiscard]] bool admit(const std::shared_ptr<Transfer>& transfer, bool multiplexed);
    template <typename... Result>
    void conclude(const std::shared_ptr<Transfer>& transfer, Result... result);
    void expireWaiting();
    void reap();
    /// False where it cannot.
    [[nodiscard]] bool goOnAfresh(Transfer& transfer);
    void deliverFinished();

    static int socketChanged(CURL* easy, curl_socket_t socket, int what, void* self, void* known);
    static int timerChanged(CURLM* multi, long milliseconds, void* self);

    // Any thread
    std::mutex m_mutex;
    std::vector<Command> m_commands;
    bool m_launched = false;
    bool m_sleeping = false;
    bool m_halting = false;
    bool m_halted = false;
    std::condition_variable m_haltChanged;
    std::size_t m_exchanges = 0;
    std::condition_variable m_exchangesChanged;

    // The leading thread, but for the waking
    SocketPoll m_sockets;

    // The leading thread
    CURLM* m_multi = nullptr;
    HandlePool m_handles;
    TrustedAuthorities m_authorities;
    std::vector<Command> m_taken;
    std::optional<Clock::Instant> m_timer;
    std::set<std::pair<Clock::Instant, std::shared_ptr<Transfer>>> m_waiting; // by deadline
    std::vector<std::shared_ptr<Transfer>> m_finished;                        // in this round
};

} // namespace virlo
