#pragma once

#include "HandlePool.h"
#include "ResponseHead.h"
#include "SessionState.h"
#include "URLSession.h"

#include <curl/curl.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace virlo
{

/// One exchange, and the task that stands for it. `resume` and `cancel` may come from any thread and hand
/// over to the I/O thread, which does the rest until `finish`; the callbacks then run on the session's queue.
/// It ends exactly once, by `finish`.
class Transfer : public URLSessionTask, public std::enable_shared_from_this<Transfer>
{
public:
    /// `receiver` is empty for a task that gathers its body.
    Transfer(std::shared_ptr<SessionState> session, URLRequest request, URLSession::Receiver receiver,
             URLSession::Completion completion);

    void resume() override;
    void suspend() override;
    void cancel() override;

    /// Calls the completions of finished transfers, all of one session, on its queue and in this order. Any
    /// thread.
    static void deliver(std::vector<std::shared_ptr<Transfer>> finished);

    // The rest: I/O thread.

    /// Makes `handle` ready for the request, whatever it carried before. A request that cannot be sent is an
    /// error.
    [[nodiscard]] OptionalError prepare(HandlePool::Handle& handle);
    /// False ends the exchange, as does any other number of bytes than those given.
    [[nodiscard]] bool takeHeaderLine(std::string_view line);
    [[nodiscard]] std::size_t takeBody(std::string_view piece);
    /// The reason why `take…` ends the exchange, where it did not say it itself.
    void noteFailure(std::string_view reason);
    /// Goes on after the stream's waiting pieces were taken. A failure ends the transfer.
    [[nodiscard]] CURLcode unpause();

    /// Whether a connection kept from earlier exchanges turned out to be closed. libcurl tries six such ones
    /// before it gives up, and after a pause all that were kept may be. True once.
    [[nodiscard]] bool isOwedFreshConnection(CURLcode result);
    void prepareFreshConnection();

    /// The outcome is settled: what is left is to `deliver`. The handle is not used any more.
    void finish(CURLcode result);
    void finish(URLSession::ErrorCode code, std::string_view reason);
    void finish(OptionalError failure);

    [[nodiscard]] const std::shared_ptr<SessionState>& session() const noexcept { return m_session; }

    /// Scheme and authority, as they stand in the URL.
    [[nodiscard]] std::string_view server() const noexcept { return m_server; }

    [[nodiscard]] Clock::Instant deadline() const noexcept { return m_deadline; }

    [[nodiscard]] CURL* easy() const noexcept { return m_easy; }

    [[nodiscard]] bool isCancelled() const noexcept { return m_cancelled; }

    [[nodiscard]] bool isFinished() const noexcept { return m_finished; }

private:
    [[nodiscard]] Error error(URLSession::ErrorCode code, std::string_view reason) const;

    [[nodiscard]] Error tooLong(std::size_t limit) const;
    [[nodiscard]] bool takeHead();
    [[nodiscard]] std::size_t takePiece(std::string_view piece);
    void gather(std::string_view piece);
    void setTimeout();

    void begin();
    void deliverPieces(bool areLast);
    void deliverCompletion();

    const std::shared_ptr<SessionState> m_session;
    URLRequest m_request;
    std::string_view m_server;
    std::atomic<bool> m_begun{false}; // resumed, or cancelled before
    std::atomic<bool> m_cancelled{false};
    Clock::Instant m_deadline{};

    // I/O thread
    CURL* m_easy = nullptr;
    const char* m_errorText = nullptr;
    bool m_finished = false;
    bool m_wentAfresh = false;
    std::size_t m_bodySize = 0;

    // I/O thread until `finish`, session queue from there
    ResponseHead m_head;
    std::optional<URL> m_redirectedTo;
    std::string m_data;
    OptionalError m_failure;

    // Session queue
    URLSession::Receiver m_receiver;
    URLSession::Completion m_completion;
    const bool m_streams;
    bool m_refused = false;

    std::mutex m_piecesMutex;
    std::string m_pieces;
    bool m_deliveryPosted = false;
    bool m_suspended = false;
    bool m_paused = false;
    std::optional<HTTPURLResponse>
        m_response; ///< of the pieces; made with the first, unchanged from there on
};

} // namespace virlo
