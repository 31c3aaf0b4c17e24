#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace virlo::test
{

/// A TCP listener on 127.0.0.1 that writes whatever the test says, for servers that break the rules.
/// Each connection is served on a thread of its own and closed when `serve` returns.
class RawServer
{
public:
    /// One accepted connection.
    class Connection
    {
    public:
        explicit Connection(int descriptor) : m_descriptor(descriptor) {}

        /// Up to the blank line that ends a request's head; empty where the client has gone.
        std::string readHead();
        /// False where the client has gone.
        bool write(std::string_view bytes);
        /// Until the client goes.
        void waitForEnd();

    private:
        int m_descriptor;
    };

    explicit RawServer(std::function<void(Connection&)> serve);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    [[nodiscard]] std::string url(const std::string& path) const;

    [[nodiscard]] int connections() const { return m_connections; }

private:
    void accept();

    std::function<void(Connection&)> m_serve;
    int m_listener = -1;
    int m_port = 0;
    std::atomic<int> m_connections{0};
    std::mutex m_mutex;
    std::vector<int> m_open;
    std::vector<std::thread> m_threads;
    std::thread m_acceptor;
};

/// A port on which nobody listens.
[[nodiscard]] std::string unreachableURL();

} // namespace virlo::test
