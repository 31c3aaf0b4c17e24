#pragma once

#include "SerialQueue.h"
#include "URLSession.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace virlo::test
{

/// The server's response to one request.
struct FakeResponse {
    FakeResponse(long code = 200, std::string content = "{}", std::optional<std::string> url = std::nullopt)
        : status(code)
        , body(std::move(content))
        , finalURL(std::move(url))
    {
    }

    long status;
    std::string body;
    std::optional<std::string> finalURL; ///< where redirects ended
    bool arrives = true;                 ///< false: the transfer fails without a response
};

[[nodiscard]] FakeResponse noResponse();

/// HTTP sessions with scripted responses. Each expected request is used once, those of one method and path in
/// the given order; an unexpected request fails the test, and so does an expectation left at the end.
class FakeTransport : public std::enable_shared_from_this<FakeTransport>
{
public:
    [[nodiscard]] static std::shared_ptr<FakeTransport> make() { return std::make_shared<FakeTransport>(); }

    FakeTransport();
    ~FakeTransport();
    FakeTransport(const FakeTransport&) = delete;
    FakeTransport& operator=(const FakeTransport&) = delete;

    [[nodiscard]] std::shared_ptr<URLSession> session(URLSessionConfiguration configuration = {});

    void expect(const std::string& method, const std::string& path, FakeResponse response = {});
    /// The response waits for `release`.
    void expectHeld(const std::string& method, const std::string& path);
    /// Responds to the oldest held request of that method and path.
    void release(const std::string& method, const std::string& path, const FakeResponse& response = {});

    /// All so far, in order, with the configuration's headers added.
    [[nodiscard]] std::vector<URLRequest> requests() const;
    /// Those of one method and path.
    [[nodiscard]] std::vector<URLRequest> requests(const std::string& method, const std::string& path) const;
    /// The last of them; fails the test where there is none.
    [[nodiscard]] URLRequest lastRequest(const std::string& method, const std::string& path) const;

private:
    friend class FakeTask;
    friend class FakeSession;
    using Key = std::pair<std::string, std::string>;

    struct Held {
        URLRequest request;
        URLSession::Completion completion;
    };

    void send(URLRequest request, URLSession::Completion completion);
    void complete(const URLRequest& request, const FakeResponse& response, URLSession::Completion completion);

    SerialQueue m_queue;
    mutable std::mutex m_mutex;
    std::map<Key, std::deque<std::optional<FakeResponse>>> m_expected;
    std::map<Key, std::deque<Held>> m_held;
    std::vector<URLRequest> m_requests;
};

} // namespace virlo::test
