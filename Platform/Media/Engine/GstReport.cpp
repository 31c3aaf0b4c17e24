#include "GstReport.h"

#include <string_view>

namespace virlo
{

namespace
{

MediaEngine::ErrorCode codeOf(const GError& error)
{
    if (error.domain == GST_RESOURCE_ERROR)
        return MediaEngine::unreachable;
    if (g_error_matches(&error, GST_CORE_ERROR, GST_CORE_ERROR_MISSING_PLUGIN) != FALSE ||
        g_error_matches(&error, GST_STREAM_ERROR, GST_STREAM_ERROR_CODEC_NOT_FOUND) != FALSE)
        return MediaEngine::noDecoder;
    return error.domain == GST_STREAM_ERROR ? MediaEngine::notMedia : MediaEngine::failed;
}

} // namespace

GstReport::GstReport(GstMessage& message)
{
    GError* error = nullptr;
    gchar* debug = nullptr;
    gst_message_parse_error(&message, &error, &debug);
    code = codeOf(*error);
    reason = error->message;
    // GStreamer's message is often no more than "internal error"; the debug text names the cause.
    if (debug != nullptr)
        reason += std::string(" (") + debug + ")";
    g_error_free(error);
    g_free(debug);
}

std::string undecodableCaps(GstMessage& message)
{
    const GstStructure* const about = gst_message_get_structure(&message);
    const gchar* const type = gst_structure_get_string(about, "type");
    if (type == nullptr || std::string_view(type) != "decoder")
        return {};
    GstCaps* caps = nullptr;
    if (gst_structure_get(about, "detail", GST_TYPE_CAPS, &caps, nullptr) == FALSE || caps == nullptr)
        return {};
    gchar* const text = gst_caps_to_string(caps);
    std::string result = text;
    g_free(text);
    gst_caps_unref(caps);
    return result;
}

} // namespace virlo
