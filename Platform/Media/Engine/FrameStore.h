#pragma once

#include "VideoFrame.h"

#include <functional>
#include <memory>
#include <mutex>

namespace virlo
{

/// Between the decoder's thread, which puts frames in, and the view: keeps only the newest. Any thread.
class FrameStore
{
public:
    explicit FrameStore(std::function<void()> arrived) : m_arrived(std::move(arrived)) {}

    void put(std::shared_ptr<const VideoFrame> frame);
    [[nodiscard]] std::shared_ptr<const VideoFrame> take();
    void setLate(long late);
    [[nodiscard]] VideoFrameCounts counts() const;
    /// Releases the frame and keeps no more.
    void close();

private:
    const std::function<void()> m_arrived;
    mutable std::mutex m_mutex;
    std::shared_ptr<const VideoFrame> m_newest;
    VideoFrameCounts m_counts;
    bool m_taken = true;
    bool m_closed = false;
};

} // namespace virlo
