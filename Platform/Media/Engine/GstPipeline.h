#pragma once

#include "Error.h"
#include "GstPointers.h"
#include "URL.h"

#include <functional>
#include <memory>
#include <optional>

namespace virlo
{

class FrameStore;
class TransferMeter;

/// GStreamer's pipeline for one clip: source, decoders, sound, and the pictures that go into a FrameStore.
/// Its operations may block: used by one thread at a time, never the main one. Messages come on any thread
/// until the pipeline has gone.
class GstPipeline
{
public:
    struct Options {
        URL url;
        bool muted = false;
        bool soundless = false; ///< the sound is decoded and thrown away
        std::shared_ptr<FrameStore> frames;
        std::shared_ptr<TransferMeter> meter;
        /// Called with the messages that matter here, on the thread that posts them.
        std::function<void(GstMessagePointer)> message;
    };

    /// Null where this device lacks a part of GStreamer.
    [[nodiscard]] static std::unique_ptr<GstPipeline> make(Options options);
    /// Down to nothing.
    ~GstPipeline();
    GstPipeline(const GstPipeline&) = delete;
    GstPipeline& operator=(const GstPipeline&) = delete;

    /// False where the state comes with a later ASYNC_DONE, once a picture and a piece of sound stand.
    bool setState(GstState state);
    void setMuted(bool muted);
    void seek(GstClockTime time);
    void recalculateLatency();

    [[nodiscard]] std::optional<GstClockTime> position() const;
    [[nodiscard]] std::optional<GstClockTime> duration() const;
    /// Pictures thrown away because they came too late.
    [[nodiscard]] long lateFrames() const;

    [[nodiscard]] bool isPipeline(const GstMessage& message) const;
    /// Whether what posted the message belongs to the sound's way out.
    [[nodiscard]] bool isAudioSink(const GstMessage& message) const;

    struct Shared;

private:
    GstPipeline() = default;

    GstPointer<GstElement> m_playbin;
    GstPointer<GstElement> m_audioSink;
    std::shared_ptr<Shared> m_shared;
};

} // namespace virlo
