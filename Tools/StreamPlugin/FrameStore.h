#pragma once

#include <QImage>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>

/// The newest frame, from the thread that grabs it to those that send it. Frames that nobody fetched in time
/// are replaced, so a slow reader skips some. Safe from any thread.
class FrameStore
{
public:
    struct Frame {
        std::uint64_t number;
        QImage image;
    };

    /// `wanted` is called on a waiting reader's thread when it needs a frame that was not grabbed yet.
    explicit FrameStore(std::function<void()> wanted);

    /// The window has drawn a frame. Whether a reader waits: otherwise a grab would be in vain, and the next
    /// reader asks for it.
    [[nodiscard]] bool noteDrawn();
    /// What is drawn from here on is newer than the image that `put` brings.
    void beginGrab();
    void put(QImage image);
    /// The first frame after that number (0: any); nothing after half a second without one, or once closed.
    [[nodiscard]] std::optional<Frame> next(std::uint64_t after);
    void close();
    [[nodiscard]] bool isClosed() const;

private:
    const std::function<void()> m_wanted;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Frame m_frame{};
    int m_waiting = 0;
    bool m_isStale = true; ///< something was drawn since the last grab began
    bool m_isClosed = false;
};
