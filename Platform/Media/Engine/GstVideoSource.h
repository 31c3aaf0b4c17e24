#pragma once

#include "GstPointers.h"
#include "PlaybackLimits.h"
#include "URL.h"

#include <memory>
#include <string>

namespace virlo
{

class TransferMeter;

/// GStreamer's element that reads a video over the network as the library itself does: with its connections,
/// its authorities and its proxies. GStreamer's own source would load a second TLS library, which parses
/// every authority of the system at the first connection.
///
/// It serves URLs with schemes of its own, so that the pipelines of a host that uses GStreamer itself never
/// use it. It blocks its streaming thread in VideoDownload rather than being a GstAppSrc: errors must not
/// overtake the data before them, and resuming a broken transfer needs no timer.
namespace GstVideoSource
{

/// Registers it with GStreamer. Once, after GStreamer was initialised.
void registerElement();

/// The URL under which a pipeline gets the video.
[[nodiscard]] std::string addressOf(const URL& url);

[[nodiscard]] bool isOne(GstElement* source);
/// Before anything is requested. `meter` counts what arrives.
void setUp(GstElement* source, std::shared_ptr<TransferMeter> meter, const PlaybackLimits& limits);

} // namespace GstVideoSource

} // namespace virlo
