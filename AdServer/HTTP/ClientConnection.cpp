#include "ClientConnection.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace adserver
{

namespace
{

using namespace std::chrono_literals;

constexpr auto peerLimit = 20s;
constexpr size_t outBufferSize = 65536;
/// Above the largest body that is taken, so that a somewhat larger one is still read off and responded to
/// with a refusal.
constexpr std::uint64_t mostBytesOfARequest = 16U << 20U;

} // namespace

ClientConnection::ClientConnection(int socket, SSL_CTX* tls, const StopSignal& stop, std::uint64_t number)
    : m_socket(socket)
    , m_stop(stop)
    , m_tls(tls ? SSL_new(tls) : nullptr)
    , m_number(number)
{
    const int on = 1;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ::fcntl(m_socket, F_SETFL, ::fcntl(m_socket, F_GETFL) | O_NONBLOCK);
    ::fcntl(m_socket, F_SETFD, FD_CLOEXEC);
    if (m_tls)
        SSL_set_fd(m_tls.get(), m_socket);
}

ClientConnection::~ClientConnection()
{
    if (m_secured && !m_broken)
        SSL_shutdown(m_tls.get());
    ::shutdown(m_socket, SHUT_WR);
    // Bytes left unread would turn the close into a reset, which can overtake the response.
    const auto end = std::chrono::steady_clock::now() + 1s;
    while (!m_broken && std::chrono::steady_clock::now() < end && waitFor(POLLIN, 100ms) &&
           ::recv(m_socket, m_in.data(), m_in.size(), 0) > 0) {
    }
    ::close(m_socket);
    ERR_clear_error();
}

bool ClientConnection::handshake()
{
    if (!m_tls)
        return true;
    for (;;) {
        ERR_clear_error();
        const int result = SSL_accept(m_tls.get());
        if (result == 1) {
            m_secured = true;
            return true;
        }
        const short event = retryEvent(result, POLLIN);
        if (event == 0 || !waitFor(event, peerLimit)) {
            m_broken = true;
            return false;
        }
    }
}

bool ClientConnection::awaitRequest(std::chrono::milliseconds limit)
{
    if (m_inPosition < m_inEnd || (m_tls && SSL_pending(m_tls.get()) > 0))
        return true;
    return waitFor(POLLIN, limit);
}

void ClientConnection::beginRequest()
{
    m_readAllowance = mostBytesOfARequest;
    m_bytesWritten = 0;
    m_bytesPerSecond = 0;
    understood = false;
    logged = false;
    m_entry = {};
    m_entry.connection = m_number;
}

ssize_t ClientConnection::read(char* into, size_t size)
{
    if (m_inPosition == m_inEnd && (!flush() || !fill()))
        return -1;
    const auto count = std::min(size, m_inEnd - m_inPosition);
    if (count > m_readAllowance)
        return -1;
    m_readAllowance -= count;
    std::memcpy(into, m_in.data() + m_inPosition, count);
    m_inPosition += count;
    return static_cast<ssize_t>(count);
}

ssize_t ClientConnection::write(const char* from, size_t size)
{
    // What was written last always waits for the final flush: by then the entry is in the log.
    if (m_broken || (m_out.size() + size > outBufferSize && !flush()))
        return -1;
    m_out.append(from, size);
    m_bytesWritten += size;
    return static_cast<ssize_t>(size);
}

bool ClientConnection::flush()
{
    if (m_out.empty())
        return true;
    const bool sent = m_bytesPerSecond > 0 ? sendThrottled() : send(m_out.data(), m_out.size());
    m_out.clear();
    if (!sent)
        m_broken = true;
    return sent;
}

bool ClientConnection::pause(std::optional<std::chrono::milliseconds> duration)
{
    const auto end = std::chrono::steady_clock::now() + duration.value_or(0ms);
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (duration && left <= 0ms)
            return true;
        std::array<pollfd, 2> sources{pollfd{m_stop.descriptor(), POLLIN, 0}, pollfd{m_socket, POLLRDHUP, 0}};
        const auto longest = std::chrono::milliseconds(1h);
        const int ready = ::poll(sources.data(), sources.size(),
                                 duration ? static_cast<int>(std::min(left, longest).count()) : -1);
        if (ready > 0)
            return false;
    }
}

bool ClientConnection::fill()
{
    m_inPosition = m_inEnd = 0;
    for (;;) {
        ERR_clear_error();
        const auto result = m_tls ? SSL_read(m_tls.get(), m_in.data(), static_cast<int>(m_in.size()))
                                  : static_cast<int>(::recv(m_socket, m_in.data(), m_in.size(), 0));
        if (result > 0) {
            m_inEnd = static_cast<size_t>(result);
            return true;
        }
        const short event = retryEvent(result, POLLIN);
        if (event == 0 || !waitFor(event, peerLimit))
            return false;
    }
}

bool ClientConnection::send(const char* from, size_t size)
{
    while (size > 0) {
        ERR_clear_error();
        const auto chunk = static_cast<int>(std::min<size_t>(size, outBufferSize * 4));
        const auto result =
            m_tls ? SSL_write(m_tls.get(), from, chunk)
                  : static_cast<int>(::send(m_socket, from, static_cast<size_t>(chunk), MSG_NOSIGNAL));
        if (result > 0) {
            from += result;
            size -= static_cast<size_t>(result);
            continue;
        }
        const short event = retryEvent(result, POLLOUT);
        if (event == 0 || !waitFor(event, peerLimit))
            return false;
    }
    return true;
}

bool ClientConnection::sendThrottled()
{
    constexpr std::uint64_t chunksPerSecond = 20;
    const auto chunk = static_cast<size_t>(std::max<std::uint64_t>(1, m_bytesPerSecond / chunksPerSecond));
    for (size_t sent = 0; sent < m_out.size(); sent += chunk) {
        const auto count = std::min(chunk, m_out.size() - sent);
        if (!send(m_out.data() + sent, count) ||
            !pause(std::chrono::milliseconds(count * 1000 / m_bytesPerSecond)))
            return false;
    }
    return true;
}

bool ClientConnection::waitFor(short events, std::chrono::milliseconds limit) const
{
    std::array<pollfd, 2> sources{pollfd{m_stop.descriptor(), POLLIN, 0}, pollfd{m_socket, events, 0}};
    int ready = 0;
    do
        ready = ::poll(sources.data(), sources.size(), static_cast<int>(limit.count()));
    while (ready < 0 && errno == EINTR);
    return ready > 0 && sources[0].revents == 0;
}

short ClientConnection::retryEvent(int result, short plainEvent) const
{
    if (!m_tls) {
        const bool again = result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
        return again ? plainEvent : short{0};
    }
    switch (SSL_get_error(m_tls.get(), result)) {
    case SSL_ERROR_WANT_READ:
        return POLLIN;
    case SSL_ERROR_WANT_WRITE:
        return POLLOUT;
    default:
        return 0;
    }
}

void ClientConnection::get_remote_ip_and_port(std::string& address, int& port) const
{
    address = "127.0.0.1";
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    port = ::getpeername(m_socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0 ? ntohs(peer.sin_port) : 0;
}

void ClientConnection::get_local_ip_and_port(std::string& address, int& port) const
{
    address = "127.0.0.1";
    port = 0;
}

socket_t ClientConnection::socket() const
{
    // The HTTP layer asks only in order to refuse numbers that select() cannot take; here everything is
    // polled.
    return 0;
}

} // namespace adserver
