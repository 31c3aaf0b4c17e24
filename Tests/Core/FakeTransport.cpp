#include "FakeTransport.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace virlo::test
{

namespace
{
URLRequest noRequest()
{
    return {*URL::fromString("none:"), "GET", {}, {}};
}
} // namespace

FakeResponse noResponse()
{
    FakeResponse response(0, "");
    response.arrives = false;
    return response;
}

class FakeTask : public URLSessionTask
{
public:
    explicit FakeTask(std::function<void()> send) : m_send(std::move(send)) {}

    void resume() override { m_send(); }

    void cancel() override {}

private:
    std::function<void()> m_send;
};

class FakeSession : public URLSession
{
public:
    FakeSession(std::shared_ptr<FakeTransport> transport, URLSessionConfiguration configuration)
        : m_transport(std::move(transport))
        , m_configuration(std::move(configuration))
    {
    }

    std::shared_ptr<URLSessionTask> dataTask(URLRequest request, Completion completion) override
    {
        request.headers.insert(m_configuration.additionalHeaders.begin(),
                               m_configuration.additionalHeaders.end());
        return std::make_shared<FakeTask>(
            [transport = m_transport, request, completion = std::move(completion)] {
                transport->send(request, completion);
            });
    }

    std::shared_ptr<URLSessionTask> streamTask(URLRequest, Receiver, Completion) override { return nullptr; }

    void finishTasksAndInvalidate() override {}

    void invalidateAndCancel() override {}

private:
    std::shared_ptr<FakeTransport> m_transport;
    URLSessionConfiguration m_configuration;
};

FakeTransport::FakeTransport() : m_queue("fake transport") {}

FakeTransport::~FakeTransport()
{
    for (const auto& [key, responses] : m_expected)
        EXPECT_TRUE(responses.empty()) << "Request not made: " << key.first << " " << key.second;
}

std::shared_ptr<URLSession> FakeTransport::session(URLSessionConfiguration configuration)
{
    return std::make_shared<FakeSession>(shared_from_this(), std::move(configuration));
}

void FakeTransport::expect(const std::string& method, const std::string& path, FakeResponse fake)
{
    const std::lock_guard lock(m_mutex);
    m_expected[{method, path}].push_back(std::move(fake));
}

void FakeTransport::expectHeld(const std::string& method, const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    m_expected[{method, path}].push_back(std::nullopt);
}

void FakeTransport::send(URLRequest request, URLSession::Completion completion)
{
    const Key key(request.method, request.url.path());
    std::optional<FakeResponse> fake;
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(request);
        auto& expected = m_expected[key];
        if (expected.empty()) {
            ADD_FAILURE() << "Unexpected request: " << request.method << " " << request.url.absoluteString();
            fake = noResponse();
        } else {
            fake = std::move(expected.front());
            expected.pop_front();
        }
        if (!fake) {
            m_held[key].push_back({std::move(request), std::move(completion)});
            return;
        }
    }
    complete(request, *fake, std::move(completion));
}

void FakeTransport::release(const std::string& method, const std::string& path, const FakeResponse& fake)
{
    Held held{noRequest(), {}};
    {
        const std::lock_guard lock(m_mutex);
        auto& waiting = m_held[{method, path}];
        if (waiting.empty()) {
            ADD_FAILURE() << "Nothing is held: " << method << " " << path;
            return;
        }
        held = std::move(waiting.front());
        waiting.pop_front();
    }
    complete(held.request, fake, std::move(held.completion));
}

void FakeTransport::complete(const URLRequest& request, const FakeResponse& fake,
                             URLSession::Completion completion)
{
    std::optional<HTTPURLResponse> response;
    OptionalError error;
    if (fake.arrives)
        response = HTTPURLResponse{
            URL::fromString(fake.finalURL.value_or("")).value_or(request.url), fake.status, {}};
    else
        error = Error{URLSession::errorDomain, URLSession::failed, {{"Reason", "Connection failed."}}};
    m_queue.async([completion = std::move(completion), body = fake.body, response, error] {
        completion(body, response, error);
    });
}

std::vector<URLRequest> FakeTransport::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::vector<URLRequest> FakeTransport::requests(const std::string& method, const std::string& path) const
{
    auto found = requests();
    std::erase_if(found,
                  [&](const URLRequest& each) { return each.method != method || each.url.path() != path; });
    return found;
}

URLRequest FakeTransport::lastRequest(const std::string& method, const std::string& path) const
{
    const auto found = requests(method, path);
    if (found.empty()) {
        ADD_FAILURE() << "Request not made: " << method << " " << path;
        return noRequest();
    }
    return found.back();
}

} // namespace virlo::test
