#pragma once

#include "GstPointers.h"
#include "PlaybackLimits.h"
#include "URL.h"

#include <functional>
#include <memory>
#include <optional>

namespace virlo
{

class FrameStore;
class TransferMeter;

/// GStreamer's pipeline for one video: source, decoders, sound, and the frames that go into a FrameStore. Its
/// operations may block: used by one thread at a time, never the main one. Messages are passed on any thread
/// until the pipeline is destroyed.
class GstPipeline
{
public:
    struct Options {
        URL url;
        bool muted = false;
        std::shared_ptr<FrameStore> frames;
        std::shared_ptr<TransferMeter> meter;
        PlaybackLimits limits;
        /// Called with the messages that matter here, on the thread that posts them.
        std::function<void(GstMessagePointer)> message;
    };

    /// Null where this device lacks a part of GStreamer.
    [[nodiscard]] static std::unique_ptr<GstPipeline> make(Options options);
    ~GstPipeline();
    GstPipeline(const GstPipeline&) = delete;
    GstPipeline& operator=(const GstPipeline&) = delete;

    /// False where the state is reached with a later ASYNC_DONE, when a frame and some sound are ready.
    bool setState(GstState state);
    void setMuted(bool muted);
    /// Pauses, and continues without the sound device. False where that was done before.
    bool dropSound();
    void recalculateLatency();

    [[nodiscard]] std::optional<GstClockTime> position() const;
    [[nodiscard]] std::optional<GstClockTime> duration() const;
    /// Frames dropped because they were too late.
    [[nodiscard]] long lateFrames() const;

    [[nodiscard]] bool isPipeline(const GstMessage& message) const;
    /// Whether the sound device, or a part of it, posted the message.
    [[nodiscard]] bool isSoundDevice(const GstMessage& message) const;

    struct Shared;

private:
    GstPipeline() = default;

    GstPointer<GstElement> m_playbin;
    GstPointer<GstElement> m_soundBin;
    GstPointer<GstElement> m_soundDevice; ///< null where the video plays without
    bool m_soundDropped = false;
    std::shared_ptr<Shared> m_shared;
};

} // namespace virlo
