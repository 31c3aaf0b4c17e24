#pragma once

#include "WireRequest.h"

#include <curl/curl.h>

#include <memory>
#include <vector>

namespace virlo
{

class SocketPoll;
class Transfer;

/// libcurl handles for transfers, kept for the next ones, with every option set that all requests have in
/// common. I/O thread.
class HandlePool
{
public:
    struct Handle {
        CURL* easy = nullptr;
        char errorText[CURL_ERROR_SIZE] = {};
        WireRequest wire;
        std::shared_ptr<Transfer> transfer; ///< whose callbacks the handle's are

        ~Handle() { curl_easy_cleanup(easy); }
    };

    /// `sockets` hears of every connection's making and closing.
    void setUp(SocketPoll& sockets);

    /// Null where libcurl has none.
    [[nodiscard]] std::unique_ptr<Handle> take();
    void putBack(std::unique_ptr<Handle> handle);
    /// The one whose `easy` this is.
    [[nodiscard]] static Handle* of(CURL* easy);

private:
    CURLSH* m_share = nullptr;
    SocketPoll* m_sockets = nullptr;
    std::vector<std::unique_ptr<Handle>> m_idle;
};

} // namespace virlo
