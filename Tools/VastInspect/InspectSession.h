#pragma once

#include "URLSession.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// The exchanges of one inspection: the document asked for comes from the disk where it is a file, everything
/// else from the network, which is not touched before it is needed. No other file is ever read, whatever a
/// document names. Any thread.
class InspectSession : public virlo::URLSession
{
public:
    /// One document that was asked for.
    struct Hop {
        virlo::URL url;
        std::string document;    ///< kept where documents are
        double milliseconds = 0; ///< from the request to the last byte
    };

    /// `file` is the path of the document that `source` names; empty where that is on the network.
    InspectSession(virlo::URL source, std::string file, bool keepsDocuments);

    /// In the order in which they ended.
    [[nodiscard]] std::vector<Hop> hops() const;

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
    const bool m_keepsDocuments;
    mutable std::mutex m_mutex;
    std::shared_ptr<virlo::URLSession> m_network;
    std::vector<Hop> m_hops;
};
