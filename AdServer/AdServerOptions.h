#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace adserver
{

/// How a server is set up; read once, when it starts. A folder or file left empty is done without, except
/// `stateFolder`.
struct AdServerOptions {
    /// 0: any free port.
    std::uint16_t port = 0;
    /// Plain HTTP in place of HTTPS: for benchmarks of what TLS costs and for tests of refusals. No
    /// certificate is made.
    bool plainHTTP = false;
    /// Holds the certificate authority and the server's key. Empty: `$XDG_STATE_HOME/virlo-ad-server`, or
    /// `~/.local/state/virlo-ad-server`. Servers that share a folder share the authority.
    std::filesystem::path stateFolder = {};
    /// Campaign files (*.json) with their images beside them.
    std::filesystem::path campaignsFolder = {};
    /// One JSON line is appended for each request.
    std::filesystem::path logFile = {};
    /// Its responses are served again before anything else is asked.
    std::filesystem::path replayFile = {};
    /// The inspector page's plain-HTTP port on 127.0.0.1; 0: any free one. Without it there is no page.
    std::optional<std::uint16_t> pagePort = {};
    /// Where the page finds the host's frames, as in "http://127.0.0.1:8445"; empty: nowhere.
    std::string liveView = {};
    /// What a session's response names as "pingInterval".
    std::chrono::milliseconds pingInterval{std::chrono::seconds(60)};
    /// A session that no PUT has kept up for this long is invalid.
    std::chrono::milliseconds sessionLifetime{std::chrono::seconds(180)};
    /// Called on any thread. Dates responses, lets sessions expire and rewards come due; delays of faults are
    /// real time.
    std::function<std::chrono::system_clock::time_point()> clock = [] {
        return std::chrono::system_clock::now();
    };
};

} // namespace adserver
