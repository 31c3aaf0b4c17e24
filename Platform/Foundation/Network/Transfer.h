#pragma once

#include "RequestOptions.h"
#include "SessionState.h"
#include "URLSession.h"

#include <curl/curl.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace virlo
{

class TrustedAuthorities;

/// One HTTP request and its response: the task of a CurlSession. `resume`, `suspend` and `cancel` may be
/// called from any thread and hand over to the I/O thread, which does the rest until `finish`; the callbacks
/// then run on the session's queue. `finish` is called exactly once.
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

    /// Makes the libcurl handle. A request that cannot be sent is an error; there is no handle then.
    [[nodiscard]] OptionalError open(CURLSH* share, const TrustedAuthorities& authorities);

    /// Null before `open` and after `close`.
    [[nodiscard]] CURL* easy() const noexcept { return m_handle ? m_handle->easy : nullptr; }

    /// The handle must not be in a multi handle any more.
    void close() { m_handle.reset(); }

    /// Continues after a pause for a slow receiver. An error ends the transfer.
    [[nodiscard]] CURLcode unpause();

    /// Whether a connection kept from earlier requests turned out to be closed by the server; libcurl itself
    /// gives up after several such ones. Then the request is sent once more, on a new connection. True once.
    [[nodiscard]] bool retriesOnNewConnection(CURLcode result);

    /// Settles the outcome; `deliver` reports it.
    void finish(CURLcode result);
    void finish(URLSession::ErrorCode code, std::string_view reason);
    void finish(OptionalError failure);

    /// The time at which the request times out, as far as is known now: received bytes move it on.
    [[nodiscard]] Clock::Instant deadline() const;

    /// The key under which the loop keeps this transfer; changed by the loop only.
    Clock::Instant timeoutCheck{};

    [[nodiscard]] const std::shared_ptr<SessionState>& session() const noexcept { return m_session; }

    [[nodiscard]] std::string_view origin() const { return m_request.url.origin(); }

    [[nodiscard]] bool isCancelled() const noexcept { return m_cancelled; }

    [[nodiscard]] bool isFinished() const noexcept { return m_finished; }

private:
    struct Handle {
        CURL* easy = nullptr;
        HeaderLines headerLines;
        char errorText[CURL_ERROR_SIZE] = {};

        ~Handle() { curl_easy_cleanup(easy); }
    };

    template <std::size_t (Transfer::*receive)(std::string_view)>
    static std::size_t callback(char* bytes, std::size_t size, std::size_t count, void* transfer);
    /// Any other result than the number of bytes given ends the transfer.
    [[nodiscard]] std::size_t receiveHeaderLine(std::string_view line);
    [[nodiscard]] std::size_t receiveBody(std::string_view chunk);
    [[nodiscard]] std::size_t receiveStreamed(std::string_view chunk);
    [[nodiscard]] bool receiveHeadEnd();
    [[nodiscard]] HTTPURLResponse readResponse(long status) const;

    [[nodiscard]] Error error(URLSession::ErrorCode code, std::string_view reason) const;
    [[nodiscard]] Error tooLong(std::size_t limit) const;

    void begin();
    void deliverChunk(bool isLast);
    void deliverCompletion();

    const std::shared_ptr<SessionState> m_session;
    URLRequest m_request;
    std::atomic<bool> m_begun{false}; ///< resumed, or cancelled before
    std::atomic<bool> m_cancelled{false};

    // I/O thread
    std::unique_ptr<Handle> m_handle;
    Clock::Instant m_lastActivity{};
    bool m_finished = false;
    bool m_retried = false;
    std::size_t m_headSize = 0; ///< of all heads, redirects included
    std::size_t m_bodySize = 0;

    // I/O thread until `finish`, session queue afterwards
    std::optional<HTTPURLResponse> m_response; ///< set with the end of the final head, unchanged afterwards
    std::string m_data;
    OptionalError m_failure;

    // Session queue
    URLSession::Receiver m_receiver;
    URLSession::Completion m_completion;
    const bool m_streams;
    bool m_refused = false; ///< the receiver returned false, or a chunk was dropped

    mutable std::mutex m_chunkMutex;
    std::string m_chunk; ///< received and not yet delivered
    bool m_deliveryPosted = false;
    bool m_suspended = false;
    bool m_paused = false;
};

} // namespace virlo
