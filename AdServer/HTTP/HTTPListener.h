#pragma once

#include "ClientConnection.h"
#include "OpenSSLTypes.h"
#include "Response.h"
#include "StopSignal.h"

#include <httplib.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <thread>

namespace adserver
{

/// Turns connections on 127.0.0.1 into requests and responses into bytes; reading, routing and writing of
/// HTTP are cpp-httplib's, the connections are ours. Serves once: made for a start, gone with the stop.
class HTTPListener final : private httplib::Server
{
public:
    /// Called on the connection's thread with the whole request. Nothing: the connection has been broken off.
    using Responder = std::function<std::optional<Response>(const httplib::Request&, ClientConnection&)>;
    /// Called once for each request, before the end of its response is sent.
    using Logger = std::function<void(const RequestLogEntry&)>;

    /// `tls` is null for plain HTTP. Each connection occupies a thread until it closes; further ones wait.
    HTTPListener(TLSContextPointer tls, Responder responder, Logger logger,
                 std::size_t mostConnections = 128);
    /// Stops.
    ~HTTPListener() override;

    /// Throws std::runtime_error when the port cannot be had; 0 takes any.
    void listen(std::uint16_t port);
    void stop();

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    static constexpr size_t largestBody = 1U << 20U;

private:
    bool process_and_close_socket(socket_t socket) override;
    void prepare(httplib::Request& request, ClientConnection& connection) const;
    void respond(const httplib::Request& request, httplib::Response& output) const;
    static void deliver(Response response, httplib::Response& output, ClientConnection& connection);
    void log(ClientConnection& connection) const;

    TLSContextPointer m_tls;
    const Responder m_responder;
    const Logger m_logger;
    StopSignal m_stop;
    std::thread m_acceptor;
    std::atomic<std::uint64_t> m_connections = 0;
    std::uint16_t m_port = 0;
};

} // namespace adserver
