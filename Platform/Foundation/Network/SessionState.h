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

/// What a session shares with its transfers, each of which keeps it alive. I/O thread unless marked
/// otherwise.
struct SessionState {
    /// The session's connections to one server. Transfers beyond `maximumConnectionsPerHost` wait in order.
    struct Host {
        int active = 0;
        std::deque<std::shared_ptr<Transfer>> waiting;
    };

    using Hosts = std::map<std::string, Host, std::less<>>; ///< by the URL's origin

    SessionState(URLSessionConfiguration given, std::shared_ptr<SerialQueue> sessionQueue)
        : configuration(std::move(given))
        , queue(std::move(sessionQueue))
    {
    }

    const URLSessionConfiguration configuration; ///< any thread
    const std::shared_ptr<SerialQueue> queue;    ///< any thread
    std::atomic<bool> ended{false};              ///< any thread

    bool cancelled = false; ///< after `invalidateAndCancel`: transfers that start now are refused
    std::unordered_set<std::shared_ptr<Transfer>> transfers; ///< active and waiting
    Hosts hosts;
    std::string authorities; ///< see TrustedAuthorities::apply
};

} // namespace virlo
