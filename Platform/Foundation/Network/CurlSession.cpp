#include "CurlSession.h"

#include "Transfer.h"
#include "TransferLoop.h"

#include <utility>

namespace virlo
{

CurlSession::CurlSession(URLSessionConfiguration configuration)
    : m_state(std::make_shared<SessionState>(std::move(configuration), m_queue))
{
    TransferLoop::shared().warmUp();
}

std::shared_ptr<URLSessionTask> CurlSession::dataTask(URLRequest request, Completion completion)
{
    return std::make_shared<Transfer>(m_state, std::move(request), Receiver(), std::move(completion));
}

std::shared_ptr<URLSessionTask> CurlSession::streamTask(URLRequest request, Receiver receiver,
                                                        Completion completion)
{
    return std::make_shared<Transfer>(m_state, std::move(request), std::move(receiver),
                                      std::move(completion));
}

void CurlSession::finishTasksAndInvalidate()
{
    m_state->ended = true;
}

void CurlSession::invalidateAndCancel()
{
    m_state->ended = true;
    TransferLoop::shared().cancelAll(m_state);
}

} // namespace virlo
