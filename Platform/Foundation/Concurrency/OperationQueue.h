#pragma once

#include <functional>
#include <memory>

namespace virlo
{

/// A concurrent queue that can be suspended: work added while suspended is kept and runs, in no guaranteed
/// order, once resumed. Runs on the default global queue. Any thread. Work still kept when the queue goes is
/// dropped unrun.
class OperationQueue
{
public:
    OperationQueue();
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    void addOperation(std::function<void()> work);
    void setSuspended(bool suspended);
    [[nodiscard]] bool isSuspended() const;

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
