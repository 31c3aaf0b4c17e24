#include "Transfer.h"

#include "Guarded.h"
#include "TransferLoop.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace virlo
{

namespace
{
constexpr std::size_t maximumPiecesWaiting = std::size_t{1} << 20;
constexpr std::size_t maximumRest = std::size_t{1} << 20; ///< what is gathered of a stream's other answers
constexpr std::size_t smallBody = std::size_t{1} << 20;
constexpr std::size_t largestReservation = std::size_t{64} << 20;
} // namespace

Transfer::Transfer(std::shared_ptr<SessionState> session, URLRequest request, URLSession::Receiver receiver,
                   URLSession::Completion completion)
    : m_session(std::move(session))
    , m_request(std::move(request))
    , m_server(WireRequest::serverOf(m_request.url))
    , m_receiver(std::move(receiver))
    , m_completion(std::move(completion))
    , m_streams(m_receiver != nullptr)
{
}

void Transfer::resume()
{
    if (!m_begun.exchange(true)) {
        begin();
        return;
    }
    const std::lock_guard lock(m_piecesMutex);
    if (std::exchange(m_suspended, false) && !m_pieces.empty() && !std::exchange(m_deliveryPosted, true))
        m_session->queue.async([self = shared_from_this()] { self->deliverPieces(false); });
}

void Transfer::suspend()
{
    const std::lock_guard lock(m_piecesMutex);
    m_suspended = true;
}

void Transfer::begin()
{
    TransferLoop::shared().exchangeBegan();
    if (m_session->ended) {
        finish(URLSession::sessionEnded, "The session has ended.");
        deliver({shared_from_this()});
        return;
    }
    m_deadline = std::chrono::steady_clock::now() + Clock::ticks(m_request.timeout);
    TransferLoop::shared().start(shared_from_this());
}

void Transfer::cancel()
{
    m_cancelled = true;
    if (m_begun.exchange(true)) {
        TransferLoop::shared().cancel(shared_from_this());
        return;
    }
    TransferLoop::shared().exchangeBegan();
    finish(URLSession::cancelled, "Cancelled.");
    deliver({shared_from_this()});
}

void Transfer::deliver(std::vector<std::shared_ptr<Transfer>> finished)
{
    SerialQueue& queue = finished.front()->m_session->queue;
    queue.async([finished = std::move(finished)] {
        for (const auto& transfer : finished)
            runGuarded([&transfer] { transfer->deliverCompletion(); },
                       transfer->m_session->queue.label().c_str());
    });
}

OptionalError Transfer::prepare(HandlePool::Handle& handle)
{
    m_easy = handle.easy;
    m_errorText = handle.errorText;
    const std::string scheme = m_request.url.scheme();
    if (scheme != "http" && scheme != "https")
        return error(URLSession::unsupportedURL, "The URL is neither of http nor of https.");
    if (const auto reason = handle.wire.apply(m_easy, m_request, m_session->configuration.additionalHeaders))
        return error(URLSession::failed, *reason);
    setTimeout();
    return std::nullopt;
}

void Transfer::setTimeout()
{
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(m_deadline - std::chrono::steady_clock::now());
    const auto milliseconds = std::clamp<std::int64_t>(left.count(), 1, std::numeric_limits<int>::max());
    curl_easy_setopt(m_easy, CURLOPT_TIMEOUT_MS, static_cast<long>(milliseconds));
}

bool Transfer::isOwedFreshConnection(CURLcode result)
{
    // A report that went out whole may have been counted, answered or not; it must not go out again.
    const bool repeats = m_request.method == "GET" || m_request.method == "HEAD";
    const bool broke = result == CURLE_SEND_ERROR ||
                       (repeats && (result == CURLE_RECV_ERROR || result == CURLE_GOT_NOTHING));
    if (!broke || m_cancelled || m_head.status() != 0 || m_head.isArriving())
        return false;
    long made = 0;
    curl_easy_getinfo(m_easy, CURLINFO_NUM_CONNECTS, &made);
    return made == 0 && !std::exchange(m_wentAfresh, true);
}

void Transfer::prepareFreshConnection()
{
    curl_easy_setopt(m_easy, CURLOPT_FRESH_CONNECT, 1L);
    setTimeout();
}

bool Transfer::takeHeaderLine(std::string_view line)
{
    switch (m_head.take(line)) {
    case ResponseHead::Progress::Arriving:
        return true;
    case ResponseHead::Progress::Whole:
        return takeHead();
    case ResponseHead::Progress::TooLong:
        break;
    }
    noteFailure("The answer's head is too long.");
    return false;
}

bool Transfer::takeHead()
{
    long redirects = 0;
    curl_easy_getinfo(m_easy, CURLINFO_REDIRECT_COUNT, &redirects);
    if (redirects > 0) {
        const char* text = nullptr;
        curl_easy_getinfo(m_easy, CURLINFO_EFFECTIVE_URL, &text);
        m_redirectedTo = URL::fromString(text != nullptr ? text : "");
    }
    if (m_head.status() == 303) // whatever the method was, what follows is a GET; libcurl would repeat it
        curl_easy_setopt(m_easy, CURLOPT_CUSTOMREQUEST, nullptr);

    const bool announcesInVain = m_request.method == "HEAD" || m_head.status() == 304;
    if (announcesInVain || m_head.announcedLength().value_or(0) <= m_request.maximumBodySize)
        return true;
    m_failure = tooLong(m_request.maximumBodySize);
    return false;
}

std::size_t Transfer::takeBody(std::string_view piece)
{
    const bool isStreamed = m_streams && m_head.status() / 100 == 2;
    const std::size_t limit = m_streams && !isStreamed ? std::min(maximumRest, m_request.maximumBodySize)
                                                       : m_request.maximumBodySize;
    if (piece.size() > limit - m_bodySize) {
        m_failure = tooLong(limit);
        return 0;
    }
    if (isStreamed)
        return takePiece(piece);
    gather(piece);
    return piece.size();
}

// A body that grows by doubling would take up to three times its size for a moment. A large one gets the room
// of the longest that may come; the system gives memory only to what is written.
void Transfer::gather(std::string_view piece)
{
    const std::size_t needed = m_data.size() + piece.size();
    if (needed > m_data.capacity()) {
        const std::size_t largest = std::max(needed, std::min(m_request.maximumBodySize, largestReservation));
        if (m_data.empty())
            m_data.reserve(std::clamp<std::uint64_t>(m_head.announcedLength().value_or(0), needed, largest));
        else if (needed > smallBody)
            m_data.reserve(largest);
    }
    m_data.append(piece);
    m_bodySize = m_data.size();
}

std::size_t Transfer::takePiece(std::string_view piece)
{
    bool post = false;
    {
        const std::lock_guard lock(m_piecesMutex);
        if (m_pieces.size() >= maximumPiecesWaiting) {
            m_paused = true;
            return CURL_WRITEFUNC_PAUSE;
        }
        if (!m_response)
            m_response = m_head.response(m_redirectedTo.value_or(m_request.url));
        m_pieces.append(piece);
        post = !m_suspended && !std::exchange(m_deliveryPosted, true);
    }
    m_bodySize += piece.size();
    if (post)
        m_session->queue.async([self = shared_from_this()] { self->deliverPieces(false); });
    return piece.size();
}

CURLcode Transfer::unpause()
{
    return m_easy != nullptr ? curl_easy_pause(m_easy, CURLPAUSE_CONT) : CURLE_OK;
}

void Transfer::noteFailure(std::string_view reason)
{
    m_failure = error(URLSession::failed, reason);
}

void Transfer::finish(CURLcode result)
{
    if (m_failure) {
        finish(std::move(m_failure));
        return;
    }
    const bool answered = m_head.status() != 0;
    if (result == CURLE_OK) {
        // libcurl takes a head without an end for a whole one.
        const bool whole = answered && !m_head.isArriving();
        finish(whole ? OptionalError() : error(URLSession::failed, "The answer's head was cut off."));
        return;
    }
    auto code = URLSession::failed;
    if (result == CURLE_OPERATION_TIMEDOUT)
        code = URLSession::timedOut;
    else if (result == CURLE_URL_MALFORMAT || (result == CURLE_UNSUPPORTED_PROTOCOL && answered))
        code = URLSession::unsupportedURL; // the second is a redirect to anything but http and https
    finish(code, m_errorText != nullptr && *m_errorText != '\0' ? m_errorText : curl_easy_strerror(result));
}

void Transfer::finish(URLSession::ErrorCode code, std::string_view reason)
{
    finish(error(code, reason));
}

void Transfer::finish(OptionalError failure)
{
    m_failure = std::move(failure);
    m_finished = true;
    m_easy = nullptr;
    m_errorText = nullptr;
}

Error Transfer::error(URLSession::ErrorCode code, std::string_view reason) const
{
    return {URLSession::errorDomain, code,
            JSON{{"Reason", std::string(reason)}, {"URL", m_request.url.absoluteString()}}};
}

Error Transfer::tooLong(std::size_t limit) const
{
    return error(URLSession::bodyTooLong, "The body is longer than " + std::to_string(limit) + " bytes.");
}

void Transfer::deliverPieces(bool areLast)
{
    std::string pieces;
    bool paused = false;
    {
        const std::lock_guard lock(m_piecesMutex);
        m_deliveryPosted = false;
        if (m_suspended && !areLast)
            return;
        pieces.swap(m_pieces);
        paused = std::exchange(m_paused, false);
    }
    if (paused)
        TransferLoop::shared().unpause(shared_from_this());
    if (pieces.empty())
        return;
    if (m_cancelled || m_refused) {
        m_refused = true; // a body with a piece left out never counts as whole
    } else if (!m_receiver(pieces, *m_response)) {
        m_refused = true;
        cancel();
    }
}

void Transfer::deliverCompletion()
{
    struct CountOut {
        ~CountOut() { TransferLoop::shared().exchangeEnded(); }
    } const countOut; // also where the completion throws

    runGuarded([this] { deliverPieces(true); }, m_session->queue.label().c_str());
    if (m_refused && !m_failure)
        m_failure = error(URLSession::cancelled, "Cancelled.");
    m_receiver = nullptr;
    const auto completion = std::exchange(m_completion, nullptr);
    if (!completion)
        return;
    std::optional<HTTPURLResponse> response = std::move(m_response);
    if (!response && m_head.status() != 0)
        response = m_head.response(m_redirectedTo.value_or(m_request.url));
    completion(std::move(m_data), response, m_failure);
}

} // namespace virlo
