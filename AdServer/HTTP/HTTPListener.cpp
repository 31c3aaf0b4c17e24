#include "HTTPListener.h"

#include "WorkerPool.h"

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

constexpr auto idlePatience = 75s;
constexpr auto everyPath = "[\\s\\S]*";
constexpr size_t copyBuffer = 65536;

/// The handlers of the HTTP layer get a request and a response only; each connection has a thread of its own.
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

/// One step of sending `body`; false breaks the answer off. Steps end where the body stalls, so that the next
/// one begins there and no other does.
bool sendPiece(const AnswerBody& body, std::uint64_t offset, const BodyFaults& faults,
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
        if (count > 0 && sink.write(buffer.data(), count))
            return true;
    }
    connection.breakOff();
    return false;
}

class TextBody final : public AnswerBody
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

HTTPListener::HTTPListener(TLSContextPointer tls, Answerer answerer, Noter noter)
    : m_tls(std::move(tls))
    , m_answerer(std::move(answerer))
    , m_noter(std::move(noter))
{
    new_task_queue = [] { return new WorkerPool; };
    set_tcp_nodelay(true);
    // The layer below would let two servers share a port, and clients meet either.
    set_socket_options([](socket_t socket) {
        const int on = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    set_keep_alive_max_count(1'000'000);
    set_keep_alive_timeout(std::chrono::seconds(idlePatience).count());
    set_payload_max_length(largestBody);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
    };
    Get(everyPath, handler);
    Post(everyPath, handler);
    Put(everyPath, handler);
    Patch(everyPath, handler);
    Delete(everyPath, handler);
    Options(everyPath, handler);
    set_error_handler(HandlerWithResponse([](const httplib::Request&, httplib::Response& response) {
        if (currentConnection->understood)
            return HandlerResponse::Unhandled;
        const char* const code = response.status == 413   ? "TOO_LARGE"
                                 : response.status == 414 ? "URI_TOO_LONG"
                                 : response.status == 416 ? "BAD_RANGE"
                                 : response.status < 500  ? "BAD_REQUEST"
                                                          : "SERVER_ERROR";
        deliver(Answer::error(response.status, code), response, *currentConnection);
        return HandlerResponse::Handled;
    }));
    set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, const std::exception_ptr& failure) {
            std::string reason;
            try {
                std::rethrow_exception(failure);
            } catch (const std::exception& error) {
                reason = error.what();
            } catch (...) {
                reason = "unknown";
            }
            deliver(Answer::error(500, "SERVER_ERROR", reason), response, *currentConnection);
        });
    set_logger([](const httplib::Request&, const httplib::Response& response) {
        currentConnection->exchange().status = response.status;
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
    while (connection.awaitRequest(idlePatience)) {
        connection.beginRequest();
        bool closing = false;
        const bool served = process_request(connection, false, closing,
                                            [&](httplib::Request& request) { prepare(request, connection); });
        note(connection);
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
    auto& exchange = connection.exchange();
    exchange.time = std::chrono::system_clock::now();
    exchange.method = request.method;
    exchange.path = request.path;
    if (const auto mark = request.target.find('?'); mark != std::string::npos)
        exchange.query = request.target.substr(mark + 1, request.target.find('#', mark) - mark - 1);
    for (const auto& [name, value] : request.headers)
        if (auto key = lowerCase(name); !addedByTheLayer.contains(key))
            exchange.headers.insert_or_assign(std::move(key), value);
    if (const auto session = exchange.headers.find("vrl-sessionid"); session != exchange.headers.end())
        exchange.session = session->second;

    // Ranges are the file endpoint's; the layer would cut any answer, and read beyond its end.
    request.ranges.clear();
    request.headers.erase("Accept-Encoding");
    // Without a length the layer reads a body until the client closes.
    if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
        request.headers.emplace("Content-Length", "0");
}

void HTTPListener::answer(const httplib::Request& request, httplib::Response& response) const
{
    auto& connection = *currentConnection;
    connection.understood = true;
    connection.exchange().body = request.body;
    auto answer = request.body.size() > largestBody ? std::optional(Answer::error(413, "TOO_LARGE"))
                                                    : m_answerer(request, connection);
    if (answer)
        deliver(std::move(*answer), response, connection);
}

void HTTPListener::deliver(Answer answer, httplib::Response& response, ClientConnection& connection)
{
    connection.setSpeed(answer.bytesPerSecond);
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers) {
        response.headers.erase(name);
        response.set_header(name, value);
    }
    const auto contentType = answer.contentType.empty() ? "application/octet-stream" : answer.contentType;
    if (!answer.body && !answer.chunked && !answer.cutBodyAfter && !answer.stallBodyAfter) {
        response.body = std::move(answer.text);
        if (!response.body.empty())
            response.set_header("Content-Type", contentType);
        return;
    }
    const auto body = answer.body ? answer.body : std::make_shared<const TextBody>(std::move(answer.text));
    const BodyFaults faults{answer.cutBodyAfter, answer.stallBodyAfter, answer.stallFor};
    if (answer.chunked)
        response.set_chunked_content_provider(
            contentType, [body, faults, &connection](size_t offset, httplib::DataSink& sink) {
                if (offset < body->size() || (faults.cutAfter && offset >= *faults.cutAfter))
                    return sendPiece(*body, offset, faults, sink, connection);
                sink.done();
                return true;
            });
    else
        response.set_content_provider(
            static_cast<size_t>(body->size()), contentType,
            [body, faults, &connection](size_t offset, size_t, httplib::DataSink& sink) {
                return sendPiece(*body, offset, faults, sink, connection);
            });
}

void HTTPListener::note(ClientConnection& connection) const
{
    auto& exchange = connection.exchange();
    exchange.bytes = connection.bytesWritten();
    if (exchange.bytes == 0)
        exchange.status = 0;
    const bool cameToNothing = exchange.method.empty() && exchange.bytes == 0;
    if (!std::exchange(connection.noted, true) && !cameToNothing)
        m_noter(exchange);
}

} // namespace adserver
