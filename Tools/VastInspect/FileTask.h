#pragma once

#include "URLSession.h"

#include <atomic>
#include <memory>
#include <string>

/// Reads a file as an exchange that answers with it. Its callbacks run on the background queue.
class FileTask : public virlo::URLSessionTask, public std::enable_shared_from_this<FileTask>
{
public:
    FileTask(std::string path, virlo::URL url, virlo::URLSession::Receiver receiver,
             virlo::URLSession::Completion completion);

    void resume() override;

    void cancel() override { m_cancelled = true; }

private:
    void run();
    void complete(const virlo::OptionalError& error);
    [[nodiscard]] virlo::Error error(virlo::URLSession::ErrorCode code, const char* reason) const;

    const std::string m_path;
    const virlo::URL m_url;
    const virlo::URLSession::Receiver m_receiver;
    const virlo::URLSession::Completion m_completion;
    std::atomic<bool> m_cancelled{false};
};
