#include "HTTPListener.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace adserver
{

namespace
{

using namespace std::chrono_literals;

constexpr auto idleLimit = 75s;
constexpr auto everyPath = "[\\s\\S]*";
constexpr size_t copyBuffer = 65536;

/// The handlers of the HTTP layer get a request and a output only; each connection has a thread of its own.
thread_local ClientConnection* currentConnection = nullptr;

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

/// What may go wrong within a body.
struct BodyFaults {
    std::optional<std::uint64_t> cutAfter;
    std::optional<std::uint64_t> stallAfter;
    std::optional<std::chrono::milliseconds> stallFor;
};

bool isText(const std::string& contentType)
{
    return contentType.starts_with("text/") || contentType.find("json") != std::string::npos ||
           contentType.find("xml") != std::string::npos;
}

/// What the log keeps of the response's body: the first bytes of a text that goes out.
std::string loggedBody(const Response& response)
{
    if (!isText(response.contentType))
        return {};
    const auto most =
        std::min<std::uint64_t>(RequestLogEntry::longestLoggedBody,
                                response.cutBodyAfter.value_or(RequestLogEntry::longestLoggedBody));
    if (!response.body)
        return response.text.substr(0, static_cast<size_t>(most));
    std::string text(static_cast<size_t>(std::min(most, response.body->size())), '\0');
    text.resize(response.body->isLive() ? 0 : response.body->read(0, text.data(), text.size()));
    return text;
}

/// One step of sending `body`; false breaks the response off. Steps end where the body stalls, so that the
/// next one begins there and no other does.
bool sendChunk(const ResponseBody& body, std::uint64_t offset, const BodyFaults& faults,
               httplib::DataSink& sink, ClientConnection& connection)
{
    const bool stalls = faults.stallAfter == offset;
    if (!stalls || (connection.flush() && connection.pause(faults.stallFor))) {
        std::vector<char> buffer(copyBuffer);
        std::uint64_t allowed = copyBuffer;
        if (faults.cutAfter)
            allowed = std::min(allowed, *faults.cutAfter - std::min(*faults.cutAfter, offset));
        if (faults.stallAfter && *faults.stallAfter > offset)
            allowed = std::min(allowed, *faults.stallAfter - offset);
        const auto count = body.read(offset, buffer.data(), static_cast<size_t>(allowed));
        if (count > 0 && sink.write(buffer.data(), count) && (!body.isLive() || connection.flush()))
            return true;
    }
    connection.breakOff();
    return false;
}

class TextBody final : public ResponseBody
{
public:
    explicit TextBody(std::string text) : m_text(std::move(text)) {}

    [[nodiscard]] std::uint64_t size() const override { return m_text.size(); }

    [[nodiscard]] std::size_t read(std::uint64_t offset, char* into, std::size_t capacity) const override
    {
        return offset < m_text.size() ? m_text.copy(into, capacity, static_cast<std::size_t>(offset)) : 0;
    }

private:
    const std::string m_text;
};

} // namespace

HTTPListener::HTTPListener(TLSContextPointer tls, Responder responder, Logger logger,
                           std::size_t mostConnections)
    : m_tls(std::move(tls))
    , m_responder(std::move(responder))
    , m_logger(std::move(logger))
{
    new_task_queue = [mostConnections] { return new httplib::ThreadPool(mostConnections); };
    set_tcp_nodelay(true);
    // The layer below would let two servers share a port, and clients meet either.
    set_socket_options([](socket_t socket) {
        const int on = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    set_keep_alive_max_count(1'000'000);
    set_keep_alive_timeout(std::chrono::seconds(idleLimit).count());
    set_payload_max_length(largestBody);
    const auto handler = [this](const httplib::Request& request, httplib::Response& output) {
        respond(request, output);
    };
    Get(everyPath, handler);
    Post(everyPath, handler);
    Put(everyPath, handler);
    Patch(everyPath, handler);
    Delete(everyPath, handler);
    Options(everyPath, handler);
    set_error_handler(HandlerWithResponse([](const httplib::Request&, httplib::Response& output) {
        if (currentConnection->understood)
            return HandlerResponse::Unhandled;
        const char* const code = output.status == 413   ? "TOO_LARGE"
                                 : output.status == 414 ? "URI_TOO_LONG"
                                 : output.status == 416 ? "BAD_RANGE"
                                 : output.status < 500  ? "BAD_REQUEST"
                                                        : "SERVER_ERROR";
        deliver(Response::error(output.status, code), output, *currentConnection);
        return HandlerResponse::Handled;
    }));
    set_exception_handler(
        [](const httplib::Request&, httplib::Response& output, const std::exception_ptr& failure) {
            std::string reason;
            try {
                std::rethrow_exception(failure);
            } catch (const std::exception& error) {
                reason = error.what();
            } catch (...) {
                reason = "unknown";
            }
            deliver(Response::error(500, "SERVER_ERROR", reason), output, *currentConnection);
        });
    set_logger([](const httplib::Request&, const httplib::Response& output) {
        auto& entry = currentConnection->entry();
        entry.status = output.status;
        for (const auto& [name, value] : output.headers)
            entry.responseHeaders.insert_or_assign(lowerCase(name), value);
    });
}

HTTPListener::~HTTPListener()
{
    stop();
}

void HTTPListener::listen(std::uint16_t port)
{
    const int bound =
        port == 0 ? bind_to_any_port("127.0.0.1") : (bind_to_port("127.0.0.1", port) ? int{port} : -1);
    if (bound <= 0)
        throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(port) +
                                 (port == 0 ? "" : "; is another server running there?"));
    // The HTTP layer's own backlog of 5 makes a burst of connections wait for TCP's retry.
    ::listen(svr_sock_, SOMAXCONN);
    m_port = static_cast<std::uint16_t>(bound);
    m_acceptor = std::thread([this] { listen_after_bind(); });
    // A stop before it runs would be lost.
    while (!is_running())
        std::this_thread::yield();
}

void HTTPListener::stop()
{
    if (!m_acceptor.joinable())
        return;
    m_stop.raise();
    httplib::Server::stop();
    m_acceptor.join();
}

bool HTTPListener::process_and_close_socket(socket_t socket)
{
    ClientConnection connection(socket, m_tls.get(), m_stop, ++m_connections);
    if (!connection.handshake())
        return false;
    currentConnection = &connection;
    while (connection.awaitRequest(idleLimit)) {
        connection.beginRequest();
        bool closing = false;
        const bool served = process_request(connection, false, closing,
                                            [&](httplib::Request& request) { prepare(request, connection); });
        log(connection);
        if (!connection.flush() || !connection.is_writable() || !served || closing || !connection.understood)
            break;
    }
    currentConnection = nullptr;
    return true;
}

void HTTPListener::prepare(httplib::Request& request, ClientConnection& connection) const
{
    static const std::set<std::string> addedByTheLayer{"remote_addr", "remote_port", "local_addr",
                                                       "local_port"};
    auto& entry = connection.entry();
    entry.time = std::chrono::system_clock::now();
    entry.method = request.method;
    entry.path = request.path;
    if (const auto mark = request.target.find('?'); mark != std::string::npos)
        entry.query = request.target.substr(mark + 1, request.target.find('#', mark) - mark - 1);
    for (const auto& [name, value] : request.headers)
        if (auto key = lowerCase(name); !addedByTheLayer.contains(key))
            entry.headers.insert_or_assign(std::move(key), value);
    if (const auto session = entry.headers.find("vrl-sessionid"); session != entry.headers.end())
        entry.session = session->second;

    // Ranges are the file endpoint's; the layer would cut any response, and read beyond its end.
    request.ranges.clear();
    request.headers.erase("Accept-Encoding");
    // Without a length the layer reads a body until the client closes.
    if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
        request.headers.emplace("Content-Length", "0");
}

void HTTPListener::respond(const httplib::Request& request, httplib::Response& output) const
{
    auto& connection = *currentConnection;
    connection.understood = true;
    connection.entry().body = request.body;
    auto response = request.body.size() > largestBody ? std::optional(Response::error(413, "TOO_LARGE"))
                                                      : m_responder(request, connection);
    if (response)
        deliver(std::move(*response), output, connection);
}

void HTTPListener::deliver(Response response, httplib::Response& output, ClientConnection& connection)
{
    connection.setSpeed(response.bytesPerSecond);
    connection.entry().responseBody = loggedBody(response);
    output.status = response.status;
    for (const auto& [name, value] : response.headers) {
        output.headers.erase(name);
        output.set_header(name, value);
    }
    const auto contentType = response.contentType.empty() ? "application/octet-stream" : response.contentType;
    if (!response.body && !response.chunked && !response.cutBodyAfter && !response.stallBodyAfter) {
        output.body = std::move(response.text);
        if (!output.body.empty())
            output.set_header("Content-Type", contentType);
        return;
    }
    const auto body =
        response.body ? response.body : std::make_shared<const TextBody>(std::move(response.text));
    const BodyFaults faults{response.cutBodyAfter, response.stallBodyAfter, response.stallFor};
    if (response.chunked)
        output.set_chunked_content_provider(
            contentType, [body, faults, &connection](size_t offset, httplib::DataSink& sink) {
                if (offset < body->size() || (faults.cutAfter && offset >= *faults.cutAfter))
                    return sendChunk(*body, offset, faults, sink, connection);
                sink.done();
                return true;
            });
    else
        output.set_content_provider(
            static_cast<size_t>(body->size()), contentType,
            [body, faults, &connection](size_t offset, size_t, httplib::DataSink& sink) {
                return sendChunk(*body, offset, faults, sink, connection);
            });
}

void HTTPListener::log(ClientConnection& connection) const
{
    auto& entry = connection.entry();
    entry.bytes = connection.bytesWritten();
    if (entry.bytes == 0) {
        entry.status = 0;
        entry.responseHeaders.clear();
        entry.responseBody.clear();
    }
    const bool cameToNothing = entry.method.empty() && entry.bytes == 0;
    if (!std::exchange(connection.logged, true) && !cameToNothing)
        m_logger(entry);
}

} // namespace adserver
