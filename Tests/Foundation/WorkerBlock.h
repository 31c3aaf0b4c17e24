#pragma once

#include "GlobalQueue.h"

#include <latch>

namespace virlo::test
{

/// Holds every worker until `release`.
class WorkerBlock
{
public:
    WorkerBlock()
    {
        for (int index = 0; index < GlobalQueue::maximumThreads; ++index) {
            GlobalQueue::high().async([this] {
                m_held.count_down();
                m_free.wait();
            });
        }
        m_held.wait();
    }

    ~WorkerBlock()
    {
        release();
        GlobalQueue::drain(Seconds(10));
    }

    WorkerBlock(const WorkerBlock&) = delete;
    WorkerBlock& operator=(const WorkerBlock&) = delete;

    void release()
    {
        if (!m_free.try_wait())
            m_free.count_down();
    }

private:
    std::latch m_held{GlobalQueue::maximumThreads};
    std::latch m_free{1};
};

} // namespace virlo::test
