#pragma once

#include <functional>
#include <memory>

namespace virlo
{

/// A concurrent queue that can be suspended: operations added while suspended are kept and run, in no
/// guaranteed order, once resumed. Runs on the default global queue. Any thread. Operations still kept when
/// the queue is destroyed are dropped.
class OperationQueue
{
public:
    OperationQueue();
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    void addOperation(std::function<void()> work);
    void setSuspended(bool suspended);

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
