#pragma once

#include <gst/gst.h>

namespace virlo
{

/// Makes whoever asks this pad how to allocate frames (the decoder, the conversion) use memory mappings of
/// their own for them, which go back to the system with the frame. From the C library's heap they would stay
/// with the process: its allocator keeps what the pipeline's threads have freed, 50 MiB after twenty videos.
void offerFrameAllocator(GstPad& sinkPad);

} // namespace virlo
