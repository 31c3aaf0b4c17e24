#pragma once

#include "URLSession.h"

#include <memory>
#include <optional>
#include <string>

namespace virlo::test
{

/// What a task's completion reported. Copies share one outcome; any thread. A second completion fails the
/// test.
class Outcome
{
public:
    struct Result {
        std::string data;
        std::optional<HTTPURLResponse> response;
        OptionalError error;

        [[nodiscard]] long status() const { return response ? response->statusCode : 0; }

        /// The error's code, or 0 for success.
        [[nodiscard]] long code() const { return error ? error->code : 0; }
    };

    [[nodiscard]] URLSession::Completion completion() const;
    /// Waits for the completion, at most ten seconds; without one the test fails.
    [[nodiscard]] Result wait() const;
    [[nodiscard]] bool arrived() const;

private:
    struct State;
    std::shared_ptr<State> m_state = makeState();
    static std::shared_ptr<State> makeState();
};

/// A session with no headers of its own that trusts `authorities` beside the system's.
[[nodiscard]] std::shared_ptr<URLSession> makeSession(const std::string& authorities = {},
                                                      int connections = 6);
[[nodiscard]] URLRequest request(const std::string& url, const std::string& method = "GET");
/// Sends and waits.
[[nodiscard]] Outcome::Result send(URLSession& session, URLRequest request);
[[nodiscard]] Outcome::Result get(URLSession& session, const std::string& url);

} // namespace virlo::test
