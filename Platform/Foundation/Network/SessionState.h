#pragma once

#include "SerialQueue.h"
#include "URLSession.h"

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>

namespace virlo
{

class Transfer;

/// What a session shares with its transfers, each of which keeps it alive. Where nothing else is said it is
/// used on the I/O thread only.
struct SessionState {
    /// One server's share of the session's connections. A transfer that finds no place waits here, in order.
    struct Host {
        int active = 0;
        bool multiplexed = false; ///< its last answer came over HTTP/2
        std::deque<std::shared_ptr<Transfer>> waiting;
    };

    using Hosts = std::map<std::string, Host, std::less<>>; ///< by scheme and authority

    explicit SessionState(URLSessionConfiguration given) : configuration(std::move(given)) {}

    const URLSessionConfiguration configuration; ///< any thread
    SerialQueue queue{"com.virlohq.URLSession"}; ///< any thread
    std::atomic<bool> ended{false};              ///< any thread

    bool cancelled = false; ///< `invalidateAndCancel` has come by: what starts now is refused
    std::unordered_set<std::shared_ptr<Transfer>> transfers;
    Hosts hosts;
    std::string authorities; ///< see TrustedAuthorities::apply
};

} // namespace virlo
