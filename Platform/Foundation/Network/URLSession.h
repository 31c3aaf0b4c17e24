#pragma once

#include "Clock.h"
#include "Error.h"
#include "Export.h"
#include "SerialQueue.h"
#include "URL.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// Sessions have no response cache, so both policies reach the server; the policy is kept with the request
/// for a transport that has one.
enum class CachePolicy { UseProtocolCachePolicy = 0, ReloadIgnoringLocalCacheData = 1 };

struct URLRequest {
    URL url;
    std::string method = "GET";
    std::map<std::string, std::string> headers = {}; ///< beside the session's; these win
    std::optional<std::string> body = {};
    CachePolicy cachePolicy = CachePolicy::UseProtocolCachePolicy;
    /// The longest time without a received byte, and the longest wait for a connection. A transfer that moves
    /// steadily is not cut off, but a gathered body ends after one hour at the latest.
    Seconds timeout = Seconds(60);
    /// The longest body accepted; a longer one ends the transfer with an error, `bodyTooLong`.
    std::size_t maximumBodySize = std::size_t{64} << 20;
};

struct HTTPURLResponse {
    URL url; ///< the final one, after redirects
    long statusCode = 0;
    std::multimap<std::string, std::string> headers = {}; ///< names in lower case
};

[[nodiscard]] std::string describe(const HTTPURLResponse& response);

struct VIRLO_EXPORT URLSessionConfiguration {
    std::map<std::string, std::string> additionalHeaders;
    /// A PEM file of certificate authorities trusted beside the system's. How a host reaches a server whose
    /// certificate comes from its own authority; verification itself cannot be turned off.
    std::string trustedAuthoritiesFile;
    int maximumConnectionsPerHost = 6;

    /// Carries the process-wide `trustedAuthoritiesFile`, if one was set.
    [[nodiscard]] static URLSessionConfiguration defaultConfiguration();
    /// From here on for every new default configuration; set it before the library starts. Main thread.
    static void setDefaultTrustedAuthoritiesFile(std::string path);
};

/// One request and its response. Starts with `resume`; its completion is called exactly once, also after
/// `cancel`.
class URLSessionTask
{
public:
    virtual ~URLSessionTask() = default;
    virtual void resume() = 0;

    /// Holds a stream's chunks back until the next `resume`; a chunk already being delivered still arrives.
    /// Once the transfer has ended its last bytes, at most 1 MiB, are delivered all the same.
    virtual void suspend() {}

    /// Ends the transfer soon; the completion then gets the error `cancelled`. One that has ended already
    /// keeps its own outcome, and one that was never resumed completes now.
    virtual void cancel() = 0;
};

/// HTTP and HTTPS requests over the process's one I/O thread. Redirects are followed (at most 20, to http and
/// https only; GET stays GET, 303 and redirected POSTs become GET as in browsers); where the target of one
/// fails there is no response. Completions and stream callbacks run on the session's own serial queue, never
/// on the caller's stack. A session released without an end lets its tasks finish. Usable from any thread;
/// nothing here waits for the network. HTTP/2 is used where the server offers it; responses may be
/// compressed. Nothing is kept but idle connections: no cookies, no cache. Timeouts use the system's time,
/// whatever clock is set. Proxies come from the environment, but none is used for the loopback.
///
/// Errors carry domain `errorDomain`, a code of `ErrorCode` and in userInfo "Reason" (libcurl's text) and
/// "URL".
class URLSession : public std::enable_shared_from_this<URLSession>
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.url";

    enum ErrorCode {
        failed = 1,
        cancelled = 2,
        timedOut = 3,
        bodyTooLong = 4,
        unsupportedURL = 5,
        sessionEnded = 6,
        untrusted = 7 ///< the server's certificate, or there is no list of authorities to hold it against
    };

    /// `response` is absent exactly where no final head arrived. `data` holds what arrived of the body, also
    /// beside an error.
    using Completion = std::function<void(std::string data, const std::optional<HTTPURLResponse>& response,
                                          const OptionalError&)>;
    /// A chunk of a 2xx body as it arrives, and its response; false ends the transfer as `cancel` does. While
    /// more than 1 MiB waits for a slow receiver nothing more is read from the server.
    using Receiver = std::function<bool(std::string_view chunk, const HTTPURLResponse& response)>;

    [[nodiscard]] VIRLO_EXPORT static std::shared_ptr<URLSession>
    sessionWithConfiguration(URLSessionConfiguration configuration);

    virtual ~URLSession() = default;

    [[nodiscard]] virtual std::shared_ptr<URLSessionTask> dataTask(URLRequest request,
                                                                   Completion completion) = 0;
    /// As `dataTask`, but a 2xx body goes to `receiver` chunk by chunk instead of being gathered; any other
    /// is gathered up to 1 MiB.
    [[nodiscard]] virtual std::shared_ptr<URLSessionTask> streamTask(URLRequest request, Receiver receiver,
                                                                     Completion completion) = 0;

    /// No new tasks: whichever is resumed from here on completes with `sessionEnded`. Those running finish.
    virtual void finishTasksAndInvalidate() = 0;
    /// No new tasks; those running are cancelled.
    virtual void invalidateAndCancel() = 0;

    /// The queue of the session's callbacks, for results that need no request.
    [[nodiscard]] SerialQueue& queue() const noexcept { return *m_queue; }

    /// Waits until no transfer of any session is left and every completion has returned, at most `limit`;
    /// returns whether that happened. For a process's exit and for tests; never from a completion.
    static bool drain(Seconds limit);

protected:
    const std::shared_ptr<SerialQueue> m_queue = std::make_shared<SerialQueue>("com.virlohq.URLSession");
};

} // namespace virlo
