#pragma once

#include "OpenSSLTypes.h"
#include "RequestLogEntry.h"
#include "StopSignal.h"

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace adserver
{

/// One client's connection, with TLS or without: buffered both ways, throttled and broken off at will. Owned
/// and used by the one thread that serves it; every wait ends when the stop signal is raised. A failed read
/// or write is -1.
class ClientConnection final : public httplib::Stream
{
public:
    /// Takes the socket over. `tls` is null for plain HTTP.
    ClientConnection(int socket, SSL_CTX* tls, const StopSignal& stop, std::uint64_t number);
    /// Closes in good order unless broken off.
    ~ClientConnection() override;
    ClientConnection(const ClientConnection&) = delete;
    ClientConnection& operator=(const ClientConnection&) = delete;

    [[nodiscard]] bool handshake();
    /// False when nothing came in time or the client went away.
    [[nodiscard]] bool awaitRequest(std::chrono::milliseconds limit);
    /// Forgets what was set and counted for the request before.
    void beginRequest();

    /// Sends what is buffered.
    bool flush();

    /// From now on writes fail. What is buffered still goes out with the next flush; then the connection ends
    /// without TLS's farewell.
    void breakOff() { m_broken = true; }

    /// 0: as fast as it goes.
    void setSpeed(std::uint64_t bytesPerSecond) { m_bytesPerSecond = bytesPerSecond; }

    /// Waits; without a duration until the stop or the client's leaving. False when either came.
    bool pause(std::optional<std::chrono::milliseconds> duration);

    /// Of the present request's response, those still buffered too.
    [[nodiscard]] std::uint64_t bytesWritten() const { return m_bytesWritten; }

    [[nodiscard]] RequestLogEntry& entry() { return m_entry; }

    [[nodiscard]] const RequestLogEntry& entry() const { return m_entry; }

    /// Set once the whole request has reached its handler; otherwise the HTTP layer refused it.
    bool understood = false;
    bool logged = false;

    [[nodiscard]] bool is_readable() const override { return !m_broken; }

    [[nodiscard]] bool is_writable() const override { return !m_broken; }

    ssize_t read(char* into, size_t size) override;
    ssize_t write(const char* from, size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    [[nodiscard]] socket_t socket() const override;

private:
    [[nodiscard]] bool fill();
    [[nodiscard]] bool send(const char* from, size_t size);
    [[nodiscard]] bool sendThrottled();
    [[nodiscard]] bool waitFor(short events, std::chrono::milliseconds limit) const;
    /// The event to wait for after a call that did not succeed; 0 when it failed for good.
    [[nodiscard]] short retryEvent(int result, short plainEvent) const;

    const int m_socket;
    const StopSignal& m_stop;
    TLSPointer m_tls;
    const std::uint64_t m_number;

    std::array<char, 16384> m_in{};
    size_t m_inPosition = 0;
    size_t m_inEnd = 0;
    std::uint64_t m_readAllowance = 0;
    std::string m_out;
    std::uint64_t m_bytesWritten = 0;
    std::uint64_t m_bytesPerSecond = 0;
    bool m_secured = false;
    bool m_broken = false;
    RequestLogEntry m_entry;
};

} // namespace adserver
