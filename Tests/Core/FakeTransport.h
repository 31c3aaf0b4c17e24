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

/// What the server says to one request.
struct Answer {
    long status = 200;
    std::string body = "{}";
    bool arrives = true;                 ///< false: the exchange fails without an HTTP answer
    std::optional<std::string> finalURL; ///< where redirects ended
};

[[nodiscard]] Answer noAnswer();

/// HTTP sessions that answer by a script. Each expected exchange is used once, those of one method and path
/// in the order announced; a request that nobody expected fails the test, and so does an expectation that is
/// left at the end.
class FakeTransport : public std::enable_shared_from_this<FakeTransport>
{
public:
    [[nodiscard]] static std::shared_ptr<FakeTransport> make() { return std::make_shared<FakeTransport>(); }

    FakeTransport();
    ~FakeTransport();
    FakeTransport(const FakeTransport&) = delete;
    FakeTransport& operator=(const FakeTransport&) = delete;

    [[nodiscard]] std::shared_ptr<URLSession> session(URLSessionConfiguration configuration = {});

    void expect(const std::string& method, const std::string& path, Answer answer = {});
    /// The answer waits for `release`.
    void expectHeld(const std::string& method, const std::string& path);
    /// Answers the oldest held request of that method and path.
    void release(const std::string& method, const std::string& path, const Answer& answer = {});

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

    void exchange(URLRequest request, URLSession::Completion completion);
    void complete(const URLRequest& request, const Answer& answer, URLSession::Completion completion);

    SerialQueue m_queue;
    mutable std::mutex m_mutex;
    std::map<Key, std::deque<std::optional<Answer>>> m_expected;
    std::map<Key, std::deque<Held>> m_held;
    std::vector<URLRequest> m_requests;
};

} // namespace virlo::test
