#pragma once

#include "GstPointers.h"

#include <memory>

namespace virlo
{

class FrameStore;

/// Null where this device has no such element.
[[nodiscard]] GstPointer<GstElement> makeGstElement(const char* factory);

/// Puts frames into `frames`, each when it is due, mapped in the memory in which the decoder or the
/// conversion left it. They are converted only where the decoder gives another format. Null where a part is
/// missing.
[[nodiscard]] GstPointer<GstElement> makeVideoSink(const std::shared_ptr<FrameStore>& frames);

/// The sound device that suits this system best, opened; null where there is none. May block as long as the
/// sound server does.
[[nodiscard]] GstPointer<GstElement> openSoundDevice();
/// Plays on `device`, or where that is null consumes the sound at its pace. An error of the device does not
/// stop the pipeline.
[[nodiscard]] GstPointer<GstElement> makeAudioSink(GstElement* device);
/// In a paused pipeline: from here on `sink`, made with `device`, consumes the sound.
void replaceSoundDevice(GstElement& sink, GstElement& device);

} // namespace virlo
