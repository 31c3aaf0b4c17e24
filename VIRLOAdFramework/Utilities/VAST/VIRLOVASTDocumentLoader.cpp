#include "VIRLOVASTDocumentLoader.h"

#include "GlobalQueue.h"
#include "VIRLOVASTDocumentReader.h"

#include <algorithm>
#include <utility>

using virlo::GlobalQueue;
using virlo::URLSession;

VIRLOVASTDocumentLoader::VIRLOVASTDocumentLoader(std::shared_ptr<URLSession> session)
    : m_session(std::move(session))
{
}

void VIRLOVASTDocumentLoader::load(const virlo::URL& url, URLSession::Completion completion)
{
    Document document{url, std::move(completion)};
    {
        const std::lock_guard lock(m_mutex);
        if (++m_documentCount >= firstPacedDocument) {
            m_waiting.push_back(std::move(document));
            pauseBeforeNext();
            return;
        }
        ++m_running;
    }
    start(std::move(document));
}

/// With the mutex held.
void VIRLOVASTDocumentLoader::pauseBeforeNext()
{
    if (m_waiting.empty() || m_isPausing || m_running > 0)
        return;
    m_isPausing = true;
    GlobalQueue::background().after(m_nextPause, [self = shared_from_this()] { self->startNext(); });
    m_nextPause = std::min(2 * m_nextPause, longestPause);
}

void VIRLOVASTDocumentLoader::startNext()
{
    std::deque<Document> next;
    {
        const std::lock_guard lock(m_mutex);
        m_isPausing = false;
        if (isAwaited()) {
            next.push_back(std::move(m_waiting.front()));
            m_waiting.pop_front();
        } else {
            next.swap(m_waiting);
        }
        m_running += next.size();
    }
    for (Document& document : next)
        start(std::move(document));
}

void VIRLOVASTDocumentLoader::start(Document document)
{
    auto completion = [self = shared_from_this(), completion = std::move(document.completion)](
                          std::string data, const auto& response, const virlo::OptionalError& error) {
        self->didLoad();
        completion(std::move(data), response, error);
    };
    if (isAwaited()) {
        virlo::URLRequest request{std::move(document.url)};
        request.maximumBodySize = virlo::XMLReader::maximumDocumentSize;
        m_session->dataTask(std::move(request), std::move(completion))->resume();
        return;
    }
    GlobalQueue::background().async([completion = std::move(completion), url = std::move(document.url)] {
        completion(
            {}, std::nullopt,
            virlo::Error{URLSession::errorDomain,
                         URLSession::cancelled,
                         {{"Reason", "Nobody waits for the document."}, {"URL", url.absoluteString()}}});
    });
}

void VIRLOVASTDocumentLoader::didLoad()
{
    const std::lock_guard lock(m_mutex);
    --m_running;
    pauseBeforeNext();
}

bool VIRLOVASTDocumentLoader::addRecords(std::size_t count)
{
    const std::lock_guard lock(m_mutex);
    m_recordCount += count;
    return m_recordCount <= VIRLOVASTDocumentReader::maximumRecords;
}
