#include "HandlePool.h"

#include "SocketPoll.h"
#include "Transfer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>
#include <exception>
#include <string_view>
#include <utility>

namespace virlo
{

namespace
{
constexpr std::size_t maximumIdle = 8;
constexpr long maximumRedirects = 20;

curl_socket_t openSocket(void* sockets, curlsocktype, curl_sockaddr* address)
{
    // Sockets must not live on in programs that the host starts.
    const int socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (socket < 0)
        return CURL_SOCKET_BAD;
    static_cast<SocketPoll*>(sockets)->adopt(socket);
    return socket;
}

int closeSocket(void* sockets, curl_socket_t socket)
{
    static_cast<SocketPoll*>(sockets)->forget(socket);
    return ::close(socket);
}

// No exception may cross libcurl; memory can run out.
template <typename Work>
std::size_t guarded(void* handle, Work&& work)
{
    Transfer& transfer = *static_cast<HandlePool::Handle*>(handle)->transfer;
    try {
        return work(transfer);
    } catch (const std::exception& exception) {
        transfer.noteFailure(exception.what());
        return 0;
    }
}

std::size_t headerArrived(char* text, std::size_t size, std::size_t count, void* handle)
{
    const std::string_view line(text, size * count);
    return guarded(handle,
                   [line](Transfer& transfer) { return transfer.takeHeaderLine(line) ? line.size() : 0; });
}

std::size_t bodyArrived(char* bytes, std::size_t size, std::size_t count, void* handle)
{
    const std::string_view piece(bytes, size * count);
    return guarded(handle, [piece](Transfer& transfer) { return transfer.takeBody(piece); });
}
} // namespace

void HandlePool::setUp(SocketPoll& sockets)
{
    m_sockets = &sockets;
    // So that a TLS session is resumed on whatever handle comes next.
    m_share = curl_share_init();
    curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

std::unique_ptr<HandlePool::Handle> HandlePool::take()
{
    if (!m_idle.empty()) {
        auto handle = std::move(m_idle.back());
        m_idle.pop_back();
        handle->errorText[0] = '\0';
        return handle;
    }
    CURL* const easy = curl_easy_init();
    if (easy == nullptr)
        return nullptr;
    auto handle = std::make_unique<Handle>();
    handle->easy = easy;
    curl_easy_setopt(easy, CURLOPT_PRIVATE, handle.get());
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, handle->errorText);
    curl_easy_setopt(easy, CURLOPT_SHARE, m_share);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // Otherwise a cancelled name lookup would hold the thread until the resolver gives up.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &openSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, m_sockets);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &closeSocket);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, m_sockets);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &headerArrived);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, handle.get());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &bodyArrived);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, handle.get());
    curl_easy_setopt(easy, CURLOPT_TCP_NODELAY, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, maximumRedirects);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "gzip");
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    return handle;
}

void HandlePool::putBack(std::unique_ptr<Handle> handle)
{
    handle->transfer.reset();
    if (m_idle.size() < maximumIdle)
        m_idle.push_back(std::move(handle));
}

HandlePool::Handle* HandlePool::of(CURL* easy)
{
    Handle* handle = nullptr;
    curl_easy_getinfo(easy, CURLINFO_PRIVATE, &handle);
    return handle;
}

} // namespace virlo
