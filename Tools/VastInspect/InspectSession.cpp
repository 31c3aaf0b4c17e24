#include "InspectSession.h"

#include "FileTask.h"

#include <chrono>
#include <utility>

using virlo::URLSession;

InspectSession::InspectSession(virlo::URL source, std::string file, bool keepsDocuments)
    : m_source(std::move(source))
    , m_file(std::move(file))
    , m_keepsDocuments(keepsDocuments)
{
}

std::vector<InspectSession::Hop> InspectSession::hops() const
{
    const std::lock_guard lock(m_mutex);
    return m_hops;
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
    return network()->dataTask(std::move(request), std::move(completion));
}

std::shared_ptr<virlo::URLSessionTask> InspectSession::streamTask(virlo::URLRequest request,
                                                                  Receiver receiver, Completion completion)
{
    using Clock = std::chrono::steady_clock;
    const auto hop = std::make_shared<Hop>(Hop{request.url, {}, 0});
    Receiver keeping = [hop, keeps = m_keepsDocuments, receiver = std::move(receiver)](std::string_view piece,
                                                                                       const auto& response) {
        if (keeps)
            hop->document += piece;
        return receiver(piece, response);
    };
    Completion timing = [self = std::static_pointer_cast<InspectSession>(shared_from_this()), hop,
                         start = Clock::now(), completion = std::move(completion)](
                            std::string data, const std::optional<virlo::HTTPURLResponse>& response,
                            const virlo::OptionalError& error) {
        hop->milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        {
            const std::lock_guard lock(self->m_mutex);
            self->m_hops.push_back(std::move(*hop));
        }
        completion(std::move(data), response, error);
    };
    if (!m_file.empty() && request.url == m_source)
        return std::make_shared<FileTask>(m_file, m_source, std::move(keeping), std::move(timing));
    return network()->streamTask(std::move(request), std::move(keeping), std::move(timing));
}

void InspectSession::finishTasksAndInvalidate()
{
    network()->finishTasksAndInvalidate();
}

void InspectSession::invalidateAndCancel()
{
    network()->invalidateAndCancel();
}
