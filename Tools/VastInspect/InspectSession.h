#pragma once

#include "InspectOptions.h"
#include "URLSession.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Loads the documents of one inspection: the first from the disk if it is a file, all others from the
/// network, which is not touched before that. Where documents are known, all come from their files and
/// nothing from the network. No other file is ever read, whatever a document names. Any thread.
class InspectSession : public virlo::URLSession
{
public:
    /// One document that was requested.
    struct Document {
        virlo::URL url;
        std::string text;        ///< kept for `--explain` only
        double milliseconds = 0; ///< from the request to the last byte
    };

    /// `file` is the path of the document at `source`; empty if that is on the network. The request that
    /// exceeds the limit never completes and calls `limitReached` instead.
    InspectSession(virlo::URL source, std::string file, const InspectOptions& options,
                   std::function<void()> limitReached);

    /// In the order in which they ended.
    [[nodiscard]] std::vector<Document> documents() const;

    [[nodiscard]] std::shared_ptr<virlo::URLSessionTask> dataTask(virlo::URLRequest request,
                                                                  Completion completion) override;
    [[nodiscard]] std::shared_ptr<virlo::URLSessionTask>
    streamTask(virlo::URLRequest request, Receiver receiver, Completion completion) override;
    void finishTasksAndInvalidate() override;
    void invalidateAndCancel() override;

private:
    [[nodiscard]] std::shared_ptr<virlo::URLSession> network();

    const virlo::URL m_source;
    const std::string m_file;
    const std::map<std::string, std::string> m_known;
    const std::size_t m_limit;
    const bool m_keepsTexts;
    const std::function<void()> m_limitReached;
    mutable std::mutex m_mutex; ///< guards what follows
    std::shared_ptr<virlo::URLSession> m_network;
    std::size_t m_requestCount = 0;
    std::vector<Document> m_documents;
};
