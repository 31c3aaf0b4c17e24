#include "Outcome.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>

namespace virlo::test
{

struct Outcome::State {
    std::promise<Result> promise;
    std::shared_future<Result> result = promise.get_future().share();
    std::atomic<bool> completed = false;
};

std::shared_ptr<Outcome::State> Outcome::makeState()
{
    return std::make_shared<State>();
}

URLSession::Completion Outcome::completion() const
{
    return [state = m_state](std::string data, const auto& response, const OptionalError& error) {
        if (state->completed.exchange(true))
            ADD_FAILURE() << "completed twice";
        else
            state->promise.set_value({std::move(data), response, error});
    };
}

Outcome::Result Outcome::wait() const
{
    if (m_state->result.wait_for(std::chrono::seconds(10)) == std::future_status::ready)
        return m_state->result.get();
    ADD_FAILURE() << "no completion";
    return {};
}

bool Outcome::arrived() const
{
    return m_state->completed;
}

std::shared_ptr<URLSession> makeSession(const std::string& authorities, int connections)
{
    return URLSession::sessionWithConfiguration({.additionalHeaders = {},
                                                 .trustedAuthoritiesFile = authorities,
                                                 .maximumConnectionsPerHost = connections});
}

URLRequest request(const std::string& url, const std::string& method)
{
    return {.url = URL::fromString(url).value(), .method = method};
}

Outcome::Result send(URLSession& session, URLRequest request)
{
    const Outcome outcome;
    session.dataTask(std::move(request), outcome.completion())->resume();
    return outcome.wait();
}

Outcome::Result get(URLSession& session, const std::string& url)
{
    return send(session, request(url));
}

} // namespace virlo::test
