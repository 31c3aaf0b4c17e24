#pragma once

#include "Clock.h"
#include "Error.h"
#include "URLSession.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

/// Requests the documents of one tag: of the first document and of all those behind its wrappers. Shared by
/// the parsers of these documents.
///
/// A tag may lead back to itself, and nothing looks for that. So that such a tag costs next to nothing, from
/// its document `firstPacedDocument` on one request runs at a time, each after a pause that starts at
/// `firstPause` and doubles up to `longestPause`. No thread is held meanwhile. Any thread.
class VIRLOVASTDocumentLoader : public std::enable_shared_from_this<VIRLOVASTDocumentLoader>
{
public:
    static constexpr std::size_t firstPacedDocument = 200;
    static constexpr virlo::Seconds firstPause{0.01};
    static constexpr virlo::Seconds longestPause{60};

    explicit VIRLOVASTDocumentLoader(std::shared_ptr<virlo::URLSession> session);

    /// Once `owner` is gone nothing more is requested, and what waits for its turn completes with the error
    /// `URLSession::cancelled` at the end of the current pause. Before the first `load`.
    void setOwner(std::weak_ptr<const void> owner) { m_owner = std::move(owner); }

    /// Completes once, on a queue and never on the caller's stack, as a data task does. Documents of more
    /// than XMLReader::maximumDocumentSize are refused.
    void load(const virlo::URL& url, virlo::URLSession::Completion completion);

    /// Counts the records of a document that was read. False where the tag's documents together have more
    /// than VIRLOVASTDocumentReader::maximumRecords: that bounds the memory of a tag that never ends.
    [[nodiscard]] bool addRecords(std::size_t count);

private:
    struct Document {
        virlo::URL url;
        virlo::URLSession::Completion completion;
    };

    [[nodiscard]] bool isAwaited() const { return !m_owner || !m_owner->expired(); }

    void pauseBeforeNext();
    void startNext();
    void start(Document document);
    void didLoad();

    const std::shared_ptr<virlo::URLSession> m_session;
    std::optional<std::weak_ptr<const void>> m_owner;

    std::mutex m_mutex; ///< guards what follows
    std::size_t m_documentCount = 0;
    std::size_t m_recordCount = 0;
    std::size_t m_running = 0;
    std::deque<Document> m_waiting;
    bool m_isPausing = false;
    virlo::Seconds m_nextPause = firstPause;
};
