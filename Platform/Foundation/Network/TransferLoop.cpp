#include "TransferLoop.h"

#include "DetachedThread.h"
#include "ProcessShutdown.h"
#include "SessionState.h"
#include "Transfer.h"
#include "WorkerPool.h"

#include <openssl/crypto.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace virlo
{

namespace
{
constexpr long maximumConnections = 64; // of the whole process; what comes beyond waits
constexpr long maximumIdleConnections = 32;
constexpr int maximumStreamsPerHost = 100; // over one HTTP/2 connection
constexpr std::chrono::seconds longestHalt{1};

bool startLeader(std::function<void()> body)
{
    return startDetachedThread("virlo-io", std::move(body));
}

} // namespace

TransferLoop& TransferLoop::shared()
{
    static auto* const loop = new TransferLoop; // outlives every thread and static object that may use it
    return *loop;
}

void TransferLoop::warmUp()
{
    const std::lock_guard lock(m_mutex);
    static_cast<void>(launch());
}

void TransferLoop::start(std::shared_ptr<Transfer> transfer)
{
    {
        const std::lock_guard lock(m_mutex);
        if (launch()) {
            enqueue({Command::Kind::Start, std::move(transfer), nullptr});
            return;
        }
    }
    transfer->finish(URLSession::failed, "The system gives no thread or no descriptor.");
    Transfer::deliver({std::move(transfer)});
}

void TransferLoop::cancel(std::shared_ptr<Transfer> transfer)
{
    const std::lock_guard lock(m_mutex);
    enqueue({Command::Kind::Cancel, std::move(transfer), nullptr});
}

void TransferLoop::unpause(std::shared_ptr<Transfer> transfer)
{
    const std::lock_guard lock(m_mutex);
    enqueue({Command::Kind::Unpause, std::move(transfer), nullptr});
}

void TransferLoop::cancelAll(std::shared_ptr<SessionState> session)
{
    const std::lock_guard lock(m_mutex);
    enqueue({Command::Kind::CancelAll, nullptr, std::move(session)});
}

void TransferLoop::exchangeBegan()
{
    const std::lock_guard lock(m_mutex);
    ++m_exchanges;
}

void TransferLoop::exchangeEnded()
{
    const std::lock_guard lock(m_mutex);
    if (--m_exchanges == 0)
        m_exchangesChanged.notify_all();
}

bool TransferLoop::drain(Seconds limit)
{
    std::unique_lock lock(m_mutex);
    m_exchangesChanged.wait_until(lock, std::chrono::steady_clock::now() + Clock::ticks(limit),
                                  [this] { return m_exchanges == 0 || m_halting; });
    return m_exchanges == 0;
}

// Called with m_mutex held.
void TransferLoop::enqueue(Command command)
{
    if (!m_launched)
        return; // nothing was ever started
    m_commands.push_back(std::move(command));
    if (std::exchange(m_sleeping, false))
        m_sockets.wake();
}

// Called with m_mutex held.
bool TransferLoop::launch()
{
    if (m_launched)
        return true;
    // OpenSSL must not clean up while the I/O thread is still inside it. Where the host initialised it before
    // us it will; the shutdown is registered after that, so it runs first.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    static const bool registered =
        ProcessShutdown::add(ProcessShutdown::Stage::Network, [] { shared().halt(); });
    m_launched = registered && m_sockets.open() && startLeader([this] {
                     setUp();
                     lead();
                 });
    return m_launched;
}

void TransferLoop::lead()
{
    WorkerPool::Helper helper([this] { return startLeader([this] { lead(); }); });
    do {
        waitForEvents();
        for (const Command& command : m_taken)
            execute(command);
        m_taken.clear();
        expireWaiting();
        if (m_timer && *m_timer <= std::chrono::steady_clock::now()) {
            m_timer.reset();
            int running = 0;
            curl_multi_socket_action(m_multi, CURL_SOCKET_TIMEOUT, 0, &running);
        }
        reap();
        deliverFinished();
    } while (helper.work());
}

void TransferLoop::setUp()
{
    curl_global_init(CURL_GLOBAL_DEFAULT);
    m_authorities.locate();
    m_handles.setUp(m_sockets);
    m_multi = curl_multi_init();
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &TransferLoop::socketChanged);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &TransferLoop::timerChanged);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_MAX_TOTAL_CONNECTIONS, maximumConnections);
    curl_multi_setopt(m_multi, CURLMOPT_MAXCONNECTS, maximumIdleConnections);
}

void TransferLoop::halt()
{
    std::unique_lock lock(m_mutex);
    m_halting = true;
    m_exchangesChanged.notify_all();
    if (!m_launched)
        return;
    m_sockets.wake();
    m_haltChanged.wait_for(lock, longestHalt, [this] { return m_halted; });
}

void TransferLoop::waitForEvents()
{
    std::optional<Clock::Instant> next = m_timer;
    if (!m_waiting.empty() && (!next || m_waiting.begin()->first < *next))
        next = m_waiting.begin()->first;
    int timeout = -1;
    if (next) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*next - std::chrono::steady_clock::now());
        timeout = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
    }
    {
        const std::lock_guard lock(m_mutex);
        m_sleeping = m_commands.empty();
        if (!m_sleeping || m_halting)
            timeout = 0;
    }

    const std::vector<epoll_event>& events = m_sockets.wait(timeout);
    {
        std::unique_lock lock(m_mutex);
        m_sleeping = false;
        m_taken.swap(m_commands);
        if (m_halting) {
            m_halted = true;
            m_haltChanged.notify_all();
            lock.unlock();
            for (;;)
                ::pause();
        }
    }
    for (const epoll_event& event : events) {
        const int mask = ((event.events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0) |
                         ((event.events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0) |
                         ((event.events & (EPOLLERR | EPOLLHUP)) != 0 ? CURL_CSELECT_ERR : 0);
        int running = 0;
        curl_multi_socket_action(m_multi, event.data.fd, mask, &running);
    }
}

void TransferLoop::execute(const Command& command)
{
    switch (command.kind) {
    case Command::Kind::Start:
        begin(command.transfer);
        break;
    case Command::Kind::Cancel:
        // Unknown here is what has ended, and what is still to come: that looks at its own mark.
        if (command.transfer->session()->transfers.contains(command.transfer))
            conclude(command.transfer, URLSession::cancelled, "Cancelled.");
        break;
    case Command::Kind::Unpause:
        if (const CURLcode result = command.transfer->unpause(); result != CURLE_OK)
            conclude(command.transfer, result);
        break;
    case Command::Kind::CancelAll:
        command.session->cancelled = true;
        for (const auto& transfer :
             std::vector(command.session->transfers.begin(), command.session->transfers.end()))
            conclude(transfer, URLSession::cancelled, "Cancelled.");
        break;
    }
}

void TransferLoop::cancelAllOnLoop(SessionState& session)
{
    session.cancelled = true;
    const std::vector transfers(session.transfers.begin(), session.transfers.end());
    // Those waiting first: an ended one would give its place to the next.
    for (const bool running : {false, true}) {
        for (const auto& transfer : transfers) {
            if ((transfer->easy() != nullptr) == running)
                conclude(transfer, URLSession::cancelled, "Cancelled.");
        }
    }
}

void TransferLoop::begin(const std::shared_ptr<Transfer>& transfer)
{
    SessionState& session = *transfer->session();
    if (session.cancelled || transfer->isCancelled()) {
        transfer->finish(URLSession::cancelled, "Cancelled.");
        m_finished.push_back(transfer);
        return;
    }

    auto found = session.hosts.find(transfer->server());
    if (found == session.hosts.end())
        found = session.hosts.emplace(transfer->server(), SessionState::Host()).first;
    session.transfers.insert(transfer);
    found->second.waiting.push_back(transfer);
    m_waiting.emplace(transfer->deadline(), transfer);
    admitWaiting(session, found);
}

void TransferLoop::admitWaiting(SessionState& session, SessionState::Hosts::iterator position)
{
    SessionState::Host& host = position->second;
    const int limit = host.multiplexed ? maximumStreamsPerHost
                                       : std::max(1, session.configuration.maximumConnectionsPerHost);
    while (host.active < limit && !host.waiting.empty()) {
        const std::shared_ptr<Transfer> transfer = std::move(host.waiting.front());
        host.waiting.pop_front();
        if (transfer->isFinished())
            continue;
        m_waiting.erase({transfer->deadline(), transfer});
        if (admit(transfer, host.multiplexed)) {
            ++host.active;
        } else {
            session.transfers.erase(transfer);
            m_finished.push_back(transfer);
        }
    }
    if (host.active == 0 && host.waiting.empty() && !host.multiplexed)
        session.hosts.erase(position);
}

bool TransferLoop::admit(const std::shared_ptr<Transfer>& transfer, bool multiplexed)
{
    auto handle = m_handles.take();
    if (!handle) {
        transfer->finish(CURLE_FAILED_INIT);
        return false;
    }
    CURL* const easy = handle->easy;
    m_authorities.apply(easy, *transfer->session());
    curl_easy_setopt(easy, CURLOPT_PIPEWAIT, multiplexed ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 0L);
    if (auto failure = transfer->prepare(*handle)) {
        transfer->finish(std::move(failure));
        m_handles.putBack(std::move(handle));
        return false;
    }
    handle->transfer = transfer;
    if (curl_multi_add_handle(m_multi, easy) != CURLM_OK) {
        transfer->finish(CURLE_FAILED_INIT);
        return false;
    }
    static_cast<void>(handle.release()); // found again by HandlePool::of once the exchange ends
    return true;
}

// What `result` is made of goes to the transfer's own `finish`.
template <typename... Result>
void TransferLoop::conclude(const std::shared_ptr<Transfer>& transfer, Result... result)
{
    // The handle may hold the caller's own.
    const std::shared_ptr<Transfer> kept = transfer; // NOLINT(performance-unnecessary-copy-initialization)
    SessionState& session = *kept->session();
    const auto host = session.hosts.find(kept->server());
    CURL* const easy = kept->easy();
    if (easy != nullptr)
        curl_multi_remove_handle(m_multi, easy);
    else
        m_waiting.erase({kept->deadline(), kept});
    kept->finish(result...);
    m_finished.push_back(kept);
    session.transfers.erase(kept);
    if (easy == nullptr)
        return; // it leaves its line when its turn comes
    m_handles.putBack(std::unique_ptr<HandlePool::Handle>(HandlePool::of(easy)));
    --host->second.active;
    admitWaiting(session, host);
}

void TransferLoop::expireWaiting()
{
    const auto now = std::chrono::steady_clock::now();
    while (!m_waiting.empty() && m_waiting.begin()->first <= now) {
        const std::shared_ptr<Transfer> transfer = m_waiting.begin()->second;
        conclude(transfer, URLSession::timedOut, "Timed out while waiting for a connection.");
    }
}

void TransferLoop::reap()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode result = message->data.result;
        const std::shared_ptr<Transfer> transfer = HandlePool::of(message->easy_handle)->transfer;
        if (result == CURLE_OK) {
            long version = 0;
            curl_easy_getinfo(message->easy_handle, CURLINFO_HTTP_VERSION, &version);
            auto& hosts = transfer->session()->hosts;
            hosts.find(transfer->server())->second.multiplexed = version == CURL_HTTP_VERSION_2_0;
        }
        if (!transfer->isOwedFreshConnection(result) || !goOnAfresh(*transfer))
            conclude(transfer, result);
    }
}

bool TransferLoop::goOnAfresh(Transfer& transfer)
{
    curl_multi_remove_handle(m_multi, transfer.easy());
    transfer.prepareFreshConnection();
    return curl_multi_add_handle(m_multi, transfer.easy()) == CURLM_OK;
}

void TransferLoop::deliverFinished()
{
    for (auto first = m_finished.begin(); first != m_finished.end();) {
        const auto end = std::find_if(first, m_finished.end(), [first](const auto& transfer) {
            return transfer->session() != (*first)->session();
        });
        Transfer::deliver({std::make_move_iterator(first), std::make_move_iterator(end)});
        first = end;
    }
    m_finished.clear();
}

int TransferLoop::socketChanged(CURL*, curl_socket_t socket, int what, void* self, void*)
{
    const bool reads = what == CURL_POLL_IN || what == CURL_POLL_INOUT;
    const bool writes = what == CURL_POLL_OUT || what == CURL_POLL_INOUT;
    static_cast<TransferLoop*>(self)->m_sockets.want(socket,
                                                     (reads ? EPOLLIN : 0U) | (writes ? EPOLLOUT : 0U));
    return 0;
}

int TransferLoop::timerChanged(CURLM*, long milliseconds, void* self)
{
    auto& timer = static_cast<TransferLoop*>(self)->m_timer;
    if (milliseconds < 0)
        timer.reset();
    else
        timer = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    return 0;
}

} // namespace virlo
