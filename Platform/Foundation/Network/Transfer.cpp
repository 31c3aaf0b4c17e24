#include "Transfer.h"

#include "Guarded.h"
#include "TransferLoop.h"
#include "TrustedAuthorities.h"

#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

namespace virlo
{

namespace
{
constexpr std::size_t maximumBuffered = std::size_t{1} << 20; ///< of a stream whose receiver is slow
constexpr std::size_t maximumOther = std::size_t{1} << 20;    ///< gathered of a stream's non-2xx response
constexpr std::size_t maximumHeadSize = std::size_t{1} << 20;
constexpr long maximumRedirects = 20;
/// A server that sends a byte now and then never times out; a gathered body is not waited for without end.
constexpr long longestGathering = 3600; ///< seconds

curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address)
{
    // Sockets must not be inherited by programs that the host starts.
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

std::optional<std::string> header(CURL* easy, const char* name)
{
    curl_header* found = nullptr;
    if (curl_easy_header(easy, name, 0, CURLH_HEADER, -1, &found) != CURLHE_OK)
        return std::nullopt;
    return found->value;
}

/// Nothing where it is missing, and the highest number where it is not a length.
std::optional<std::uint64_t> announcedLength(CURL* easy)
{
    const auto text = header(easy, "Content-Length");
    if (!text)
        return std::nullopt;
    std::uint64_t length = 0;
    const auto read = std::from_chars(text->data(), text->data() + text->size(), length);
    return read.ec == std::errc() ? length : UINT64_MAX;
}
} // namespace

Transfer::Transfer(std::shared_ptr<SessionState> session, URLRequest request, URLSession::Receiver receiver,
                   URLSession::Completion completion)
    : m_session(std::move(session))
    , m_request(std::move(request))
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
    const std::lock_guard lock(m_chunkMutex);
    if (std::exchange(m_suspended, false) && !m_chunk.empty() && !std::exchange(m_deliveryPosted, true))
        m_session->queue->async([self = shared_from_this()] { self->deliverChunk(false); });
}

void Transfer::suspend()
{
    const std::lock_guard lock(m_chunkMutex);
    m_suspended = true;
}

void Transfer::begin()
{
    TransferLoop::shared().transferBegan();
    if (m_session->ended) {
        finish(URLSession::sessionEnded, "The session has ended.");
        deliver({shared_from_this()});
        return;
    }
    m_lastActivity = std::chrono::steady_clock::now();
    TransferLoop::shared().start(shared_from_this());
}

void Transfer::cancel()
{
    m_cancelled = true;
    if (m_begun.exchange(true)) {
        TransferLoop::shared().cancel(shared_from_this());
        return;
    }
    TransferLoop::shared().transferBegan();
    finish(URLSession::cancelled, "Cancelled.");
    deliver({shared_from_this()});
}

void Transfer::deliver(std::vector<std::shared_ptr<Transfer>> finished)
{
    SerialQueue& queue = *finished.front()->m_session->queue;
    queue.async([finished = std::move(finished)] {
        for (const auto& transfer : finished)
            runGuarded([&transfer] { transfer->deliverCompletion(); },
                       transfer->m_session->queue->label().c_str());
    });
}

OptionalError Transfer::open(CURLSH* share, const TrustedAuthorities& authorities)
{
    const std::string scheme = m_request.url.scheme();
    if (scheme != "http" && scheme != "https")
        return error(URLSession::unsupportedURL, "The URL is neither of http nor of https.");
    auto handle = std::make_unique<Handle>();
    CURL* const easy = handle->easy = curl_easy_init();
    if (easy == nullptr)
        return error(URLSession::failed, curl_easy_strerror(CURLE_OUT_OF_MEMORY));
    const auto& additional = m_session->configuration.additionalHeaders;
    if (const auto reason = setRequestOptions(easy, m_request, additional, handle->headerLines))
        return error(URLSession::failed, *reason);

    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, handle->errorText);
    curl_easy_setopt(easy, CURLOPT_SHARE, share);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // Otherwise a cancelled name lookup would block the thread until the resolver gives up.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &openSocket);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &callback<&Transfer::receiveHeaderLine>);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &callback<&Transfer::receiveBody>);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_TCP_NODELAY, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, maximumRedirects);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "gzip");
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (!m_streams)
        curl_easy_setopt(easy, CURLOPT_TIMEOUT, longestGathering);
    authorities.apply(easy, *m_session);
    m_handle = std::move(handle);
    m_lastActivity = std::chrono::steady_clock::now();
    return std::nullopt;
}

Clock::Instant Transfer::deadline() const
{
    const std::lock_guard lock(m_chunkMutex);
    // While the receiver holds the stream up, the server is not to blame.
    return (m_paused ? std::chrono::steady_clock::now() : m_lastActivity) + Clock::ticks(m_request.timeout);
}

bool Transfer::retriesOnNewConnection(CURLcode result)
{
    // A request that went out whole may have been counted, answered or not; only these may be repeated.
    const bool isRepeatable = m_request.method == "GET" || m_request.method == "HEAD";
    const bool broke = result == CURLE_SEND_ERROR ||
                       (isRepeatable && (result == CURLE_RECV_ERROR || result == CURLE_GOT_NOTHING));
    if (!broke || m_cancelled || m_headSize > 0)
        return false;
    long made = 0;
    curl_easy_getinfo(easy(), CURLINFO_NUM_CONNECTS, &made);
    if (made > 0 || std::exchange(m_retried, true))
        return false;
    curl_easy_setopt(easy(), CURLOPT_FRESH_CONNECT, 1L);
    return true;
}

// No exception may cross libcurl; memory can run out.
template <std::size_t (Transfer::*receive)(std::string_view)>
std::size_t Transfer::callback(char* bytes, std::size_t size, std::size_t count, void* data)
{
    auto& transfer = *static_cast<Transfer*>(data);
    try {
        return (transfer.*receive)({bytes, size * count});
    } catch (const std::exception& exception) {
        transfer.m_failure = transfer.error(URLSession::failed, exception.what());
        return CURL_WRITEFUNC_ERROR;
    }
}

std::size_t Transfer::receiveHeaderLine(std::string_view line)
{
    m_lastActivity = std::chrono::steady_clock::now();
    m_headSize += line.size();
    if (m_headSize > maximumHeadSize) {
        m_failure = error(URLSession::failed, "The response's head is too long.");
        return CURL_WRITEFUNC_ERROR;
    }
    const bool isEnd = line.find_first_not_of("\r\n") == std::string_view::npos;
    return !isEnd || receiveHeadEnd() ? line.size() : CURL_WRITEFUNC_ERROR;
}

// Called once for each of a request's heads: 1xx, redirects that libcurl follows, and the final one.
bool Transfer::receiveHeadEnd()
{
    long status = 0;
    curl_easy_getinfo(easy(), CURLINFO_RESPONSE_CODE, &status);
    if (m_response || status < 200) // after the final head come trailers only
        return true;
    if (status == 303) // whatever the method was, what follows is a GET; libcurl would repeat it
        curl_easy_setopt(easy(), CURLOPT_CUSTOMREQUEST, nullptr);
    // A redirect is no response: where its target fails there is none.
    if (status / 100 == 3 && !header(easy(), "Location").value_or("").empty())
        return true;
    m_response = readResponse(status);

    const bool hasBody = m_request.method != "HEAD" && status != 304;
    if (!hasBody || announcedLength(easy()).value_or(0) <= m_request.maximumBodySize)
        return true;
    m_failure = tooLong(m_request.maximumBodySize);
    return false;
}

HTTPURLResponse Transfer::readResponse(long status) const
{
    HTTPURLResponse response{m_request.url, status};
    long redirects = 0;
    curl_easy_getinfo(easy(), CURLINFO_REDIRECT_COUNT, &redirects);
    const char* text = nullptr;
    curl_easy_getinfo(easy(), CURLINFO_EFFECTIVE_URL, &text);
    if (redirects > 0)
        response.url = URL::fromString(text != nullptr ? text : "").value_or(m_request.url);
    for (curl_header* each = nullptr;
         (each = curl_easy_nextheader(easy(), CURLH_HEADER, -1, each)) != nullptr;) {
        std::string name = each->name;
        std::transform(name.begin(), name.end(), name.begin(), [](char character) {
            return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
        });
        response.headers.emplace(std::move(name), each->value);
    }
    return response;
}

std::size_t Transfer::receiveBody(std::string_view chunk)
{
    m_lastActivity = std::chrono::steady_clock::now();
    const bool isStreamed = m_streams && m_response && m_response->statusCode / 100 == 2;
    const std::size_t limit = m_streams && !isStreamed ? std::min(maximumOther, m_request.maximumBodySize)
                                                       : m_request.maximumBodySize;
    if (chunk.size() > limit - m_bodySize) {
        m_failure = tooLong(limit);
        return CURL_WRITEFUNC_ERROR;
    }
    if (isStreamed)
        return receiveStreamed(chunk);
    if (m_data.empty())
        m_data.reserve(std::clamp<std::uint64_t>(announcedLength(easy()).value_or(0), chunk.size(), limit));
    m_data.append(chunk);
    m_bodySize = m_data.size();
    return chunk.size();
}

std::size_t Transfer::receiveStreamed(std::string_view chunk)
{
    bool post = false;
    {
        const std::lock_guard lock(m_chunkMutex);
        if (m_chunk.size() >= maximumBuffered) {
            m_paused = true;
            return CURL_WRITEFUNC_PAUSE;
        }
        m_chunk.append(chunk);
        post = !m_suspended && !std::exchange(m_deliveryPosted, true);
    }
    m_bodySize += chunk.size();
    if (post)
        m_session->queue->async([self = shared_from_this()] { self->deliverChunk(false); });
    return chunk.size();
}

CURLcode Transfer::unpause()
{
    m_lastActivity = std::chrono::steady_clock::now();
    return m_handle ? curl_easy_pause(easy(), CURLPAUSE_CONT) : CURLE_OK;
}

void Transfer::finish(CURLcode result)
{
    if (m_failure) {
        finish(std::move(m_failure));
    } else if (result == CURLE_OK) {
        // To libcurl a head without an end is complete.
        finish(m_response ? OptionalError() : error(URLSession::failed, "The response's head was cut off."));
    } else {
        auto code = URLSession::failed;
        if (result == CURLE_OPERATION_TIMEDOUT)
            code = URLSession::timedOut;
        else if (result == CURLE_PEER_FAILED_VERIFICATION || result == CURLE_SSL_CACERT_BADFILE)
            code = URLSession::untrusted;
        else if (result == CURLE_URL_MALFORMAT || (result == CURLE_UNSUPPORTED_PROTOCOL && m_headSize > 0))
            code = URLSession::unsupportedURL; // the second is a redirect to anything but http and https
        const char* text = m_handle ? m_handle->errorText : "";
        finish(code, *text != '\0' ? text : curl_easy_strerror(result));
    }
}

void Transfer::finish(URLSession::ErrorCode code, std::string_view reason)
{
    finish(error(code, reason));
}

void Transfer::finish(OptionalError failure)
{
    m_failure = std::move(failure);
    m_finished = true;
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

void Transfer::deliverChunk(bool isLast)
{
    std::string chunk;
    bool wasPaused = false;
    {
        const std::lock_guard lock(m_chunkMutex);
        m_deliveryPosted = false;
        if (m_suspended && !isLast)
            return;
        chunk.swap(m_chunk);
        wasPaused = std::exchange(m_paused, false);
    }
    if (wasPaused)
        TransferLoop::shared().unpause(shared_from_this());
    if (chunk.empty())
        return;
    if (m_cancelled || m_refused) {
        m_refused = true;
    } else if (!m_receiver(chunk, *m_response)) {
        m_refused = true;
        cancel();
    }
}

void Transfer::deliverCompletion()
{
    struct CountDown {
        ~CountDown() { TransferLoop::shared().transferEnded(); }
    } const countDown; // also where the completion throws

    runGuarded([this] { deliverChunk(true); }, m_session->queue->label().c_str());
    if (m_refused && !m_failure)
        m_failure = error(URLSession::cancelled, "Cancelled.");
    m_receiver = nullptr;
    const auto completion = std::exchange(m_completion, nullptr);
    if (!completion)
        return;
    // Whoever keeps the body must not keep the room of a longer one.
    m_data.shrink_to_fit();
    completion(std::move(m_data), std::exchange(m_response, std::nullopt), m_failure);
}

} // namespace virlo
