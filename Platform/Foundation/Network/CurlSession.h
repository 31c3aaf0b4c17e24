#pragma once

#include "SessionState.h"
#include "URLSession.h"

#include <memory>

namespace virlo
{

/// A URLSession over libcurl. Its tasks are Transfers, which keep the session's state alive, not the session.
class CurlSession : public URLSession
{
public:
    explicit CurlSession(URLSessionConfiguration configuration);

    [[nodiscard]] std::shared_ptr<URLSessionTask> dataTask(URLRequest request,
                                                           Completion completion) override;
    [[nodiscard]] std::shared_ptr<URLSessionTask> streamTask(URLRequest request, Receiver receiver,
                                                             Completion completion) override;
    void finishTasksAndInvalidate() override;
    void invalidateAndCancel() override;

private:
    std::shared_ptr<SessionState> m_state;
};

} // namespace virlo
