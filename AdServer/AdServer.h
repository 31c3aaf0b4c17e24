#pragma once

#include "AdServerFault.h"
#include "AdServerOptions.h"
#include "RequestLogEntry.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace adserver
{

/// A development ad server on 127.0.0.1: the whole protocol over HTTPS, campaigns from a folder, faults on
/// demand.
///
/// Owned by whoever makes it: the program `ad-server`, or a test, which gets a server of its own on a free
/// port. Every operation may be called from any thread. It responds on its own threads, one for each
/// connection, so slow responses hold up nobody else. Each start has fresh sessions, transactions and
/// requests; faults and campaigns stay. It shares no code with the ad library: it is an independent peer.
///
///     adserver::AdServer server({.stateFolder = temporaryFolder, .campaignsFolder = campaigns});
///     server.start();
///     client.trust(server.authorityFile());
///     client.open(server.baseURL());
class AdServer
{
public:
    explicit AdServer(AdServerOptions options = {});
    /// Stops.
    ~AdServer();
    AdServer(const AdServer&) = delete;
    AdServer& operator=(const AdServer&) = delete;

    /// Makes or reads the certificate, reads the campaigns and listens; connections are accepted when it
    /// returns. Throws std::runtime_error with one readable line when the port, the state folder or the log
    /// cannot be had. A wrong campaign file is left out and named in `campaignErrors`.
    void start();
    /// Cuts every connection, also those in the midst of a response, and waits for the threads to end. May be
    /// called again, and `start` after it.
    void stop();

    /// The port listened on; 0 when not started.
    [[nodiscard]] std::uint16_t port() const;
    /// "https://localhost:PORT" (or "http://…"), no slash at the end.
    [[nodiscard]] std::string baseURL() const;
    /// "http://127.0.0.1:PORT", the inspector page; empty when not started or not asked for.
    [[nodiscard]] std::string pageURL() const;
    /// PEM of the authority that a client must trust; empty with plain HTTP.
    [[nodiscard]] std::filesystem::path authorityFile() const;

    /// Takes a campaign file's text as if it were the file `name` in `folder` (empty: the campaigns folder).
    /// It is asked before those of the folder. Throws std::invalid_argument naming the key and the reason.
    void addCampaign(const std::string& name, const std::string& text,
                     const std::filesystem::path& folder = {});
    /// One line for each campaign file left out: file, key and reason.
    [[nodiscard]] std::vector<std::string> campaignErrors() const;
    /// The same for a folder that is not served. Throws std::runtime_error when it cannot be read.
    [[nodiscard]] static std::vector<std::string> checkCampaigns(const std::filesystem::path& folder);

    /// Of several faults that fit a request, the one set last applies. Those of campaign files come after all
    /// of these.
    void setFault(const AdServerFault& fault);
    /// Takes away those set here and by the control path; and those of the campaign files.
    void clearFaults();

    /// All requests since the start or the last `clearRequests`, in the order of their ends.
    [[nodiscard]] std::vector<RequestLogEntry> requests() const;
    void clearRequests();
    /// Waits until the requests satisfy the condition, which is checked at once and after each request. False
    /// when `timeout` came first.
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                                 std::chrono::milliseconds timeout) const;
    /// Waits for `count` requests with that method and path.
    [[nodiscard]] bool waitForRequests(const std::string& method, const std::string& path, std::size_t count,
                                       std::chrono::milliseconds timeout) const;

    /// Every session is invalid from now on, as if no ping had come in time.
    void expireSessions();
    /// Named in responses from now on.
    void setPingInterval(std::chrono::milliseconds interval);
    /// The URL of every reward turns true at its next poll, once, clicked or not.
    void grantRewards();
    /// Sessions, transactions, rewards, requests and faults as after a start; the ping interval as in the
    /// options.
    void reset();

private:
    class State;
    std::unique_ptr<State> m_state;
};

} // namespace adserver
