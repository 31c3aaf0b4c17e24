#include "TransferLoop.h"

#include "DetachedThread.h"
#include "ProcessShutdown.h"
#include "SessionState.h"
#include "Transfer.h"

#include <openssl/crypto.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace virlo
{

namespace
{
constexpr long maximumConnections = 64; ///< of the whole process; more wait
constexpr long maximumIdleConnections = 32;
constexpr std::chrono::seconds longestStop{1};
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
            enqueue([this, transfer = std::move(transfer)] { begin(transfer); });
            return;
        }
    }
    transfer->finish(URLSession::failed, "The system gives no thread, or the process is exiting.");
    Transfer::deliver({std::move(transfer)});
}

void TransferLoop::cancel(std::shared_ptr<Transfer> transfer)
{
    const std::lock_guard lock(m_mutex);
    enqueue([this, transfer = std::move(transfer)] {
        // One missing here has finished or has not begun yet; one not begun checks its own cancelled flag.
        if (!transfer->session()->transfers.contains(transfer))
            return;
        transfer->finish(URLSession::cancelled, "Cancelled.");
        retire(transfer);
    });
}

void TransferLoop::unpause(std::shared_ptr<Transfer> transfer)
{
    const std::lock_guard lock(m_mutex);
    enqueue([this, transfer = std::move(transfer)] {
        if (const CURLcode result = transfer->unpause(); result != CURLE_OK) {
            transfer->finish(result);
            retire(transfer);
        }
    });
}

void TransferLoop::cancelAll(std::shared_ptr<SessionState> session)
{
    const std::lock_guard lock(m_mutex);
    enqueue([this, session = std::move(session)] { cancelAllNow(*session); });
}

void TransferLoop::transferBegan()
{
    const std::lock_guard lock(m_mutex);
    ++m_transfers;
}

void TransferLoop::transferEnded()
{
    const std::lock_guard lock(m_mutex);
    if (--m_transfers == 0)
        m_transfersChanged.notify_all();
}

bool TransferLoop::drain(Seconds limit)
{
    std::unique_lock lock(m_mutex);
    m_transfersChanged.wait_until(lock, std::chrono::steady_clock::now() + Clock::ticks(limit),
                                  [this] { return m_transfers == 0 || m_stopping; });
    return m_transfers == 0;
}

// Called with m_mutex held.
void TransferLoop::enqueue(std::function<void()> command)
{
    if (!m_launched)
        return; // nothing was ever started
    m_commands.push_back(std::move(command));
    if (m_commands.size() == 1 && m_multi != nullptr)
        curl_multi_wakeup(m_multi);
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
        ProcessShutdown::add(ProcessShutdown::Stage::Network, [] { shared().stop(); });
    m_launched = registered && startDetachedThread("virlo-io", [this] { run(); });
    return m_launched;
}

void TransferLoop::stop()
{
    std::unique_lock lock(m_mutex);
    m_stopping = true;
    m_transfersChanged.notify_all();
    if (m_multi != nullptr)
        curl_multi_wakeup(m_multi);
    if (m_launched)
        m_stopChanged.wait_for(lock, longestStop, [this] { return m_stopped; });
}

void TransferLoop::setUp()
{
    curl_global_init(CURL_GLOBAL_DEFAULT);
    m_authorities.locate();
    // So that a TLS session is resumed on whatever handle comes next.
    m_share = curl_share_init();
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    CURLM* const multi = curl_multi_init();
    curl_multi_setopt(multi, CURLMOPT_MAX_TOTAL_CONNECTIONS, maximumConnections);
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, maximumIdleConnections);
    const std::lock_guard lock(m_mutex);
    m_multi = multi;
}

void TransferLoop::run()
{
    setUp();
    for (;;) {
        runCommands();
        int running = 0;
        curl_multi_perform(m_multi, &running);
        endFinished();
        endTimedOut();
        deliverFinished();
        curl_multi_poll(m_multi, nullptr, 0, millisecondsToTimeout(), nullptr);
    }
}

void TransferLoop::runCommands()
{
    std::vector<std::function<void()>> commands;
    {
        std::unique_lock lock(m_mutex);
        commands.swap(m_commands);
        if (m_stopping) {
            m_stopped = true;
            m_stopChanged.notify_all();
            lock.unlock();
            for (;;)
                ::pause();
        }
    }
    for (const auto& command : commands)
        command();
}

void TransferLoop::cancelAllNow(SessionState& session)
{
    session.cancelled = true;
    // Those waiting go first, or a cancelled one would start the next.
    for (auto& [origin, host] : session.hosts)
        host.waiting.clear();
    for (const auto& transfer : std::vector(session.transfers.begin(), session.transfers.end())) {
        transfer->finish(URLSession::cancelled, "Cancelled.");
        retire(transfer);
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
    session.transfers.insert(transfer);
    scheduleTimeout(transfer);
    const auto host = session.hosts.try_emplace(std::string(transfer->origin())).first;
    host->second.waiting.push_back(transfer);
    admitWaiting(session, host);
}

void TransferLoop::admitWaiting(SessionState& session, SessionState::Hosts::iterator position)
{
    SessionState::Host& host = position->second;
    const int limit = std::max(1, session.configuration.maximumConnectionsPerHost);
    while (host.active < limit && !host.waiting.empty()) {
        const std::shared_ptr<Transfer> transfer = std::move(host.waiting.front());
        host.waiting.pop_front();
        if (transfer->isFinished())
            continue;
        if (admit(*transfer))
            ++host.active;
        else
            retire(transfer);
    }
    if (host.active == 0 && host.waiting.empty())
        session.hosts.erase(position);
}

bool TransferLoop::admit(Transfer& transfer)
{
    if (auto failure = transfer.open(m_share, m_authorities)) {
        transfer.finish(std::move(failure));
        return false;
    }
    if (curl_multi_add_handle(m_multi, transfer.easy()) != CURLM_OK) {
        transfer.finish(CURLE_FAILED_INIT);
        transfer.close();
        return false;
    }
    return true;
}

void TransferLoop::retire(const std::shared_ptr<Transfer>& transfer)
{
    SessionState& session = *transfer->session();
    m_timeouts.erase({transfer->timeoutCheck, transfer});
    session.transfers.erase(transfer);
    m_finished.push_back(transfer);
    if (transfer->easy() == nullptr)
        return; // it was waiting; `admitWaiting` drops it from its host's line
    curl_multi_remove_handle(m_multi, transfer->easy());
    transfer->close();
    const auto host = session.hosts.find(transfer->origin());
    --host->second.active;
    admitWaiting(session, host);
}

void TransferLoop::scheduleTimeout(const std::shared_ptr<Transfer>& transfer)
{
    transfer->timeoutCheck = transfer->deadline();
    m_timeouts.emplace(transfer->timeoutCheck, transfer);
}

void TransferLoop::endTimedOut()
{
    const auto now = std::chrono::steady_clock::now();
    while (!m_timeouts.empty() && m_timeouts.begin()->first <= now) {
        const std::shared_ptr<Transfer> transfer = m_timeouts.begin()->second;
        if (transfer->deadline() > now) { // bytes came since
            m_timeouts.erase(m_timeouts.begin());
            scheduleTimeout(transfer);
            continue;
        }
        transfer->finish(URLSession::timedOut, transfer->easy() != nullptr
                                                   ? "Timed out while no data came."
                                                   : "Timed out while waiting for a connection.");
        retire(transfer);
    }
}

int TransferLoop::millisecondsToTimeout() const
{
    constexpr std::int64_t anHour = 3'600'000;
    if (m_timeouts.empty())
        return anHour;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_timeouts.begin()->first -
                                                                   std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, anHour));
}

void TransferLoop::endFinished()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        Transfer* found = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &found);
        const std::shared_ptr<Transfer> transfer = found->shared_from_this();
        const CURLcode result = message->data.result;
        if (transfer->retriesOnNewConnection(result)) {
            curl_multi_remove_handle(m_multi, transfer->easy());
            if (curl_multi_add_handle(m_multi, transfer->easy()) == CURLM_OK)
                continue;
        }
        transfer->finish(result);
        retire(transfer);
    }
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

} // namespace virlo
