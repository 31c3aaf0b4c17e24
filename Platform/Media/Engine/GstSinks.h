#pragma once

#include "GstPointers.h"

#include <memory>

namespace virlo
{

class FrameStore;

/// Null where this device has no such element.
[[nodiscard]] GstPointer<GstElement> makeGstElement(const char* factory);

/// Where pictures end: in `frames`, each as its time comes, mapped where the decoder or the conversion left
/// it. They are converted where the decoder gives another format, and only there. Null where a part is
/// missing.
[[nodiscard]] GstPointer<GstElement> makeVideoSink(const std::shared_ptr<FrameStore>& frames);

/// The sound's way out that suits this device best, or one that takes the sound at its pace and throws it
/// away: where there is no other, or `soundless` says so. May take as long as the sound server likes.
[[nodiscard]] GstPointer<GstElement> makeAudioSink(bool soundless);

} // namespace virlo
