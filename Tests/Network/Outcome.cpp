#include "Outcome.h"

#include <gtest/gtest.h>

namespace virlo::test
{

std::string Outcome::Result::header(const std::string& name) const
{
    if (!response)
        return {};
    const auto found = response->headers.find(name);
    return found == response->headers.end() ? std::string() : found->second;
}

URLSession::Completion Outcome::completion() const
{
    return [state = m_state](std::string data, const std::optional<HTTPURLResponse>& response,
                             const OptionalError& error) {
        const std::lock_guard lock(state->mutex);
        EXPECT_FALSE(state->result) << "completed twice";
        state->result = Result{std::move(data), response, error};
        state->changed.notify_all();
    };
}

Outcome::Result Outcome::wait() const
{
    std::unique_lock lock(m_state->mutex);
    if (!m_state->changed.wait_for(lock, std::chrono::seconds(10),
                                   [this] { return m_state->result.has_value(); })) {
        ADD_FAILURE() << "no completion";
        return {};
    }
    return *m_state->result;
}

bool Outcome::arrived() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->result.has_value();
}

std::shared_ptr<URLSession> makeSession(const std::string& authorities, int connections)
{
    URLSessionConfiguration configuration;
    configuration.trustedAuthoritiesFile = authorities;
    configuration.maximumConnectionsPerHost = connections;
    return URLSession::sessionWithConfiguration(configuration);
}

URLRequest request(const std::string& url, const std::string& method)
{
    URLRequest made{URL::fromString(url).value()};
    made.method = method;
    return made;
}

Outcome::Result send(URLSession& session, URLRequest request)
{
    Outcome outcome;
    session.dataTask(std::move(request), outcome.completion())->resume();
    return outcome.wait();
}

Outcome::Result get(URLSession& session, const std::string& url)
{
    return send(session, request(url));
}

} // namespace virlo::test
