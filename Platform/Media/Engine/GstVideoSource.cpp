#include "GstVideoSource.h"

#include "TransferMeter.h"
#include "VideoDownload.h"

#include <gst/base/gstpushsrc.h>

#include <optional>
#include <string_view>
#include <utility>

namespace virlo
{

namespace
{

constexpr std::string_view schemePrefix = "virlo+";

/// The element's C++ part; GStreamer's objects are C structures.
struct Video {
    std::optional<URL> url;
    std::shared_ptr<TransferMeter> meter = std::make_shared<TransferMeter>();
    PlaybackLimits limits;
    std::unique_ptr<VideoDownload> download;
    std::optional<guint64> postedSize;
};

struct Source {
    GstPushSrc base;
    Video* video;
};

struct SourceClass {
    GstPushSrcClass base;
};

GstStaticPadTemplate padTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS_ANY);

void implementURIHandler(gpointer interface, gpointer);

G_DEFINE_TYPE_WITH_CODE(Source, virlo_video_source, GST_TYPE_PUSH_SRC, // NOLINT
                        G_IMPLEMENT_INTERFACE(GST_TYPE_URI_HANDLER, implementURIHandler))

Video& videoOf(gpointer source)
{
    return *static_cast<Source*>(source)->video;
}

// The object

void virlo_video_source_init(Source* source)
{
    source->video = new Video;
    gst_base_src_set_format(GST_BASE_SRC(source), GST_FORMAT_BYTES);
}

void finalizeSource(GObject* object)
{
    delete reinterpret_cast<Source*>(object)->video;
    G_OBJECT_CLASS(virlo_video_source_parent_class)->finalize(object);
}

// Its URL

GstURIType uriType(GType)
{
    return GST_URI_SRC;
}

const gchar* const* uriProtocols(GType)
{
    static const gchar* const protocols[] = {"virlo+http", "virlo+https", nullptr};
    return protocols;
}

gchar* uri(GstURIHandler* handler)
{
    const auto& url = videoOf(handler).url;
    return url ? g_strdup(GstVideoSource::addressOf(*url).c_str()) : nullptr;
}

gboolean setURI(GstURIHandler* handler, const gchar* text, GError** error)
{
    const std::string_view address(text);
    if (address.starts_with(schemePrefix))
        videoOf(handler).url = URL::fromString(address.substr(schemePrefix.size()));
    if (videoOf(handler).url)
        return TRUE;
    g_set_error(error, GST_URI_ERROR, GST_URI_ERROR_BAD_URI, "'%s' is not a video's URL", text);
    return FALSE;
}

void implementURIHandler(gpointer interface, gpointer)
{
    auto* const handler = static_cast<GstURIHandlerInterface*>(interface);
    handler->get_type = uriType;
    handler->get_protocols = uriProtocols;
    handler->get_uri = uri;
    handler->set_uri = setURI;
}

// Reading

gboolean start(GstBaseSrc* source)
{
    Video& video = videoOf(source);
    if (!video.url) {
        GST_ELEMENT_ERROR(source, RESOURCE, OPEN_READ, ("There is not a video's URL."), (nullptr));
        return FALSE;
    }
    video.download = std::make_unique<VideoDownload>(*video.url, video.meter, video.limits);
    video.postedSize.reset();
    return TRUE;
}

gboolean stop(GstBaseSrc* source)
{
    videoOf(source).download->stop();
    return TRUE;
}

gboolean interrupt(GstBaseSrc* source, bool interrupted)
{
    if (const auto& download = videoOf(source).download)
        download->setInterrupted(interrupted);
    return TRUE;
}

gboolean unlock(GstBaseSrc* source)
{
    return interrupt(source, true);
}

gboolean unlockStop(GstBaseSrc* source)
{
    return interrupt(source, false);
}

gboolean isSeekable(GstBaseSrc* source)
{
    const Video& video = videoOf(source);
    return static_cast<gboolean>(!video.download || video.download->isSeekable());
}

gboolean doSeek(GstBaseSrc* source, GstSegment* segment)
{
    videoOf(source).download->seek(segment->start);
    return TRUE;
}

gboolean getSize(GstBaseSrc* source, guint64* size)
{
    const Video& video = videoOf(source);
    const auto known = video.download ? video.download->size() : std::nullopt;
    *size = known.value_or(0);
    return static_cast<gboolean>(known.has_value());
}

gboolean query(GstBaseSrc* source, GstQuery* query)
{
    const Video& video = videoOf(source);
    if (GST_QUERY_TYPE(query) == GST_QUERY_URI && video.url) {
        // Relative URLs in a playlist are relative to the video's own.
        gst_query_set_uri(query, video.url->absoluteString().c_str());
        if (video.download)
            gst_query_set_uri_redirection(query, video.download->url().absoluteString().c_str());
        return TRUE;
    }
    const gboolean answered = GST_BASE_SRC_CLASS(virlo_video_source_parent_class)->query(source, query);
    if (GST_QUERY_TYPE(query) == GST_QUERY_SCHEDULING) {
        GstSchedulingFlags flags{};
        gint smallest = 0;
        gint largest = 0;
        gint alignment = 0;
        gst_query_parse_scheduling(query, &flags, &smallest, &largest, &alignment);
        // Makes the pipeline buffer.
        const auto limited = static_cast<GstSchedulingFlags>(flags | GST_SCHEDULING_FLAG_BANDWIDTH_LIMITED);
        gst_query_set_scheduling(query, limited, smallest, largest, alignment);
    }
    return answered;
}

GstBuffer* bufferOf(std::string chunk)
{
    auto* const kept = new std::string(std::move(chunk));
    return gst_buffer_new_wrapped_full(static_cast<GstMemoryFlags>(0), kept->data(), kept->size(), 0,
                                       kept->size(), kept,
                                       [](gpointer held) { delete static_cast<std::string*>(held); });
}

void postSize(GstBaseSrc* source)
{
    Video& video = videoOf(source);
    const auto size = video.download->size();
    if (!size || video.postedSize == size)
        return;
    video.postedSize = size;
    source->segment.duration = static_cast<gint64>(*size);
    gst_element_post_message(GST_ELEMENT(source), gst_message_new_duration_changed(GST_OBJECT(source)));
}

GstFlowReturn create(GstPushSrc* source, GstBuffer** buffer)
{
    VideoDownload& download = *videoOf(source).download;
    std::string chunk;
    switch (download.read(chunk)) {
    case VideoDownload::Progress::Chunk:
        break;
    case VideoDownload::Progress::End:
        return GST_FLOW_EOS;
    case VideoDownload::Progress::Interrupted:
        return GST_FLOW_FLUSHING;
    case VideoDownload::Progress::Missing:
        GST_ELEMENT_ERROR(source, RESOURCE, NOT_FOUND, ("%s", download.failure().c_str()), (nullptr));
        return GST_FLOW_ERROR;
    case VideoDownload::Progress::Failed:
        GST_ELEMENT_ERROR(source, RESOURCE, READ, ("%s", download.failure().c_str()), (nullptr));
        return GST_FLOW_ERROR;
    }
    postSize(GST_BASE_SRC(source));
    const guint64 offset = download.position() - chunk.size();
    *buffer = bufferOf(std::move(chunk));
    GST_BUFFER_OFFSET(*buffer) = offset;
    return GST_FLOW_OK;
}

void virlo_video_source_class_init(SourceClass* type)
{
    G_OBJECT_CLASS(type)->finalize = finalizeSource;
    auto* const element = GST_ELEMENT_CLASS(type);
    gst_element_class_add_static_pad_template(element, &padTemplate);
    gst_element_class_set_static_metadata(element, "Video source", "Source/Network",
                                          "Reads a video over HTTP and HTTPS", "VIRLOAdFramework");
    auto* const base = GST_BASE_SRC_CLASS(type);
    base->start = start;
    base->stop = stop;
    base->unlock = unlock;
    base->unlock_stop = unlockStop;
    base->is_seekable = isSeekable;
    base->do_seek = doSeek;
    base->get_size = getSize;
    base->query = query;
    GST_PUSH_SRC_CLASS(type)->create = create;
}

} // namespace

void GstVideoSource::registerElement()
{
    gst_element_register(nullptr, "virlovideosrc", GST_RANK_NONE, virlo_video_source_get_type());
}

std::string GstVideoSource::addressOf(const URL& url)
{
    return std::string(schemePrefix) + url.absoluteString();
}

bool GstVideoSource::isOne(GstElement* source)
{
    return G_TYPE_CHECK_INSTANCE_TYPE(source, virlo_video_source_get_type()) != FALSE;
}

void GstVideoSource::setUp(GstElement* source, std::shared_ptr<TransferMeter> meter,
                           const PlaybackLimits& limits)
{
    videoOf(source).meter = std::move(meter);
    videoOf(source).limits = limits;
}

} // namespace virlo
