#include "InspectSession.h"

#include "FileTask.h"

#include <chrono>
#include <utility>

using virlo::URLSession;

namespace
{
/// Stands for the request after the last one: the inspection has ended, so it does not complete.
class NoTask : public virlo::URLSessionTask
{
public:
    void resume() override {}

    void cancel() override {}
};
} // namespace

InspectSession::InspectSession(virlo::URL source, std::string file, const InspectOptions& options,
                               std::function<void()> limitReached)
    : m_source(std::move(source))
    , m_file(std::move(file))
    , m_known(options.known)
    , m_limit(options.limit)
    , m_keepsTexts(options.explains)
    , m_limitReached(std::move(limitReached))
{
}

std::vector<InspectSession::Document> InspectSession::documents() const
{
    const std::lock_guard lock(m_mutex);
    return m_documents;
}

std::shared_ptr<URLSession> InspectSession::network()
{
    const std::lock_guard lock(m_mutex);
    if (!m_network)
        m_network =
            URLSession::sessionWithConfiguration(virlo::URLSessionConfiguration::defaultConfiguration());
    return m_network;
}

std::shared_ptr<virlo::URLSessionTask> InspectSession::dataTask(virlo::URLRequest request,
                                                                Completion completion)
{
    using Clock = std::chrono::steady_clock;
    bool isOverLimit = false;
    {
        const std::lock_guard lock(m_mutex);
        isOverLimit = ++m_requestCount > m_limit;
    }
    if (isOverLimit) {
        m_limitReached();
        return std::make_shared<NoTask>();
    }
    Completion recording = [self = std::static_pointer_cast<InspectSession>(shared_from_this()),
                            url = request.url, start = Clock::now(),
                            completion = std::move(completion)](const std::string& data, const auto& response,
                                                                const virlo::OptionalError& error) {
        const std::chrono::duration<double, std::milli> duration = Clock::now() - start;
        {
            const std::lock_guard lock(self->m_mutex);
            self->m_documents.push_back({url, self->m_keepsTexts ? data : "", duration.count()});
        }
        completion(data, response, error);
    };
    if (!m_file.empty() && request.url == m_source)
        return std::make_shared<FileTask>(m_file, std::move(request), std::move(recording));
    if (!m_known.empty()) {
        const auto found = m_known.find(request.url.absoluteString());
        // No file has an empty name: the task of an unknown document fails.
        return std::make_shared<FileTask>(found == m_known.end() ? std::string() : found->second,
                                          std::move(request), std::move(recording));
    }
    return network()->dataTask(std::move(request), std::move(recording));
}

std::shared_ptr<virlo::URLSessionTask> InspectSession::streamTask(virlo::URLRequest request,
                                                                  Receiver receiver, Completion completion)
{
    return network()->streamTask(std::move(request), std::move(receiver), std::move(completion));
}

void InspectSession::finishTasksAndInvalidate()
{
    network()->finishTasksAndInvalidate();
}

void InspectSession::invalidateAndCancel()
{
    network()->invalidateAndCancel();
}
