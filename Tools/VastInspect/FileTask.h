#pragma once

#include "URLSession.h"

#include <memory>
#include <string>

/// Reads a file as if it were the body of an HTTP response. Completes on the background queue.
class FileTask : public virlo::URLSessionTask, public std::enable_shared_from_this<FileTask>
{
public:
    FileTask(std::string path, virlo::URLRequest request, virlo::URLSession::Completion completion);

    void resume() override;

    /// Ignored: reading a file does not take long.
    void cancel() override {}

private:
    void run() const;
    void fail(virlo::URLSession::ErrorCode code, const char* reason) const;

    const std::string m_path;
    const virlo::URLRequest m_request;
    const virlo::URLSession::Completion m_completion;
};
