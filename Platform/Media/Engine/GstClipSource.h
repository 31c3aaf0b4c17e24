#pragma once

#include "GstPointers.h"
#include "URL.h"

#include <memory>
#include <string>

namespace virlo
{

class TransferMeter;

/// GStreamer's element that reads a clip over the network as the library itself does: with its connections,
/// its authorities and its proxies. GStreamer's own would bring a second TLS library with it, which parses
/// every authority of the system at the first connection.
///
/// It serves addresses of a scheme of its own, so that the pipelines of a host that uses GStreamer as well
/// have nothing to do with it.
namespace GstClipSource
{

/// Makes GStreamer know it. Once, after GStreamer was set up.
void registerElement();

/// The address under which a pipeline gets the clip.
[[nodiscard]] std::string addressOf(const URL& url);

/// Whether `source` is one.
[[nodiscard]] bool isOne(GstElement* source);
/// Who is told of what comes, before anything is asked for.
void setMeter(GstElement* source, std::shared_ptr<TransferMeter> meter);

} // namespace GstClipSource

} // namespace virlo
