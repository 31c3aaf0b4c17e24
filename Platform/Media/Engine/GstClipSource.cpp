#include "GstClipSource.h"

#include "ClipDownload.h"
#include "TransferMeter.h"

#include <gst/base/gstpushsrc.h>

#include <optional>
#include <string_view>
#include <utility>

namespace virlo
{

namespace
{

constexpr std::string_view schemePrefix = "virlo+";

/// What the element holds; GStreamer's part of it is C.
struct Clip {
    std::optional<URL> url;
    std::shared_ptr<TransferMeter> meter = std::make_shared<TransferMeter>();
    std::unique_ptr<ClipDownload> download;
    std::optional<guint64> toldSize;
};

struct Source {
    GstPushSrc base;
    Clip* clip;
};

struct SourceClass {
    GstPushSrcClass base;
};

GstStaticPadTemplate padTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS_ANY);

void implementURIHandler(gpointer interface, gpointer);

G_DEFINE_TYPE_WITH_CODE(Source, virlo_clip_source, GST_TYPE_PUSH_SRC, // NOLINT
                        G_IMPLEMENT_INTERFACE(GST_TYPE_URI_HANDLER, implementURIHandler))

Clip& clipOf(gpointer source)
{
    return *static_cast<Source*>(source)->clip;
}

// The object

void virlo_clip_source_init(Source* source)
{
    source->clip = new Clip;
    gst_base_src_set_format(GST_BASE_SRC(source), GST_FORMAT_BYTES);
}

void finalizeSource(GObject* object)
{
    delete reinterpret_cast<Source*>(object)->clip;
    G_OBJECT_CLASS(virlo_clip_source_parent_class)->finalize(object);
}

// Its address

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
    const auto& url = clipOf(handler).url;
    return url ? g_strdup(GstClipSource::addressOf(*url).c_str()) : nullptr;
}

gboolean setURI(GstURIHandler* handler, const gchar* text, GError** error)
{
    const std::string_view address(text);
    if (address.starts_with(schemePrefix))
        clipOf(handler).url = URL::fromString(address.substr(schemePrefix.size()));
    if (clipOf(handler).url)
        return TRUE;
    g_set_error(error, GST_URI_ERROR, GST_URI_ERROR_BAD_URI, "'%s' is no clip's address", text);
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
    Clip& clip = clipOf(source);
    if (!clip.url) {
        GST_ELEMENT_ERROR(source, RESOURCE, OPEN_READ, ("There is no clip's address."), (nullptr));
        return FALSE;
    }
    clip.download = std::make_unique<ClipDownload>(*clip.url, clip.meter);
    clip.toldSize.reset();
    return TRUE;
}

gboolean stop(GstBaseSrc* source)
{
    clipOf(source).download->stop();
    return TRUE;
}

gboolean interrupt(GstBaseSrc* source, bool interrupted)
{
    if (const auto& download = clipOf(source).download)
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
    const Clip& clip = clipOf(source);
    return static_cast<gboolean>(!clip.download || clip.download->isSeekable());
}

gboolean doSeek(GstBaseSrc* source, GstSegment* segment)
{
    clipOf(source).download->seek(segment->start);
    return TRUE;
}

gboolean getSize(GstBaseSrc* source, guint64* size)
{
    const Clip& clip = clipOf(source);
    const auto known = clip.download ? clip.download->size() : std::nullopt;
    *size = known.value_or(0);
    return static_cast<gboolean>(known.has_value());
}

gboolean query(GstBaseSrc* source, GstQuery* query)
{
    const Clip& clip = clipOf(source);
    if (GST_QUERY_TYPE(query) == GST_QUERY_URI && clip.url) {
        // What the clip itself names beside itself lies there for everybody.
        gst_query_set_uri(query, clip.url->absoluteString().c_str());
        if (clip.download)
            gst_query_set_uri_redirection(query, clip.download->url().absoluteString().c_str());
        return TRUE;
    }
    const gboolean answered = GST_BASE_SRC_CLASS(virlo_clip_source_parent_class)->query(source, query);
    if (GST_QUERY_TYPE(query) == GST_QUERY_SCHEDULING) {
        GstSchedulingFlags flags{};
        gint smallest = 0;
        gint largest = 0;
        gint alignment = 0;
        gst_query_parse_scheduling(query, &flags, &smallest, &largest, &alignment);
        // It comes no faster than the network brings it: a buffer has to stand between.
        const auto limited = static_cast<GstSchedulingFlags>(flags | GST_SCHEDULING_FLAG_BANDWIDTH_LIMITED);
        gst_query_set_scheduling(query, limited, smallest, largest, alignment);
    }
    return answered;
}

GstBuffer* bufferOf(std::string piece)
{
    auto* const kept = new std::string(std::move(piece));
    return gst_buffer_new_wrapped_full(static_cast<GstMemoryFlags>(0), kept->data(), kept->size(), 0,
                                       kept->size(), kept,
                                       [](gpointer held) { delete static_cast<std::string*>(held); });
}

void tellSize(GstBaseSrc* source)
{
    Clip& clip = clipOf(source);
    const auto size = clip.download->size();
    if (!size || clip.toldSize == size)
        return;
    clip.toldSize = size;
    source->segment.duration = static_cast<gint64>(*size);
    gst_element_post_message(GST_ELEMENT(source), gst_message_new_duration_changed(GST_OBJECT(source)));
}

GstFlowReturn create(GstPushSrc* source, GstBuffer** buffer)
{
    ClipDownload& download = *clipOf(source).download;
    std::string piece;
    switch (download.read(piece)) {
    case ClipDownload::Progress::Piece:
        break;
    case ClipDownload::Progress::End:
        return GST_FLOW_EOS;
    case ClipDownload::Progress::Interrupted:
        return GST_FLOW_FLUSHING;
    case ClipDownload::Progress::Missing:
        GST_ELEMENT_ERROR(source, RESOURCE, NOT_FOUND, ("%s", download.failure().c_str()), (nullptr));
        return GST_FLOW_ERROR;
    case ClipDownload::Progress::Failed:
        GST_ELEMENT_ERROR(source, RESOURCE, READ, ("%s", download.failure().c_str()), (nullptr));
        return GST_FLOW_ERROR;
    }
    tellSize(GST_BASE_SRC(source));
    const guint64 place = download.place() - piece.size();
    *buffer = bufferOf(std::move(piece));
    GST_BUFFER_OFFSET(*buffer) = place;
    return GST_FLOW_OK;
}

void virlo_clip_source_class_init(SourceClass* type)
{
    G_OBJECT_CLASS(type)->finalize = finalizeSource;
    auto* const element = GST_ELEMENT_CLASS(type);
    gst_element_class_add_static_pad_template(element, &padTemplate);
    gst_element_class_set_static_metadata(element, "Clip source", "Source/Network",
                                          "Reads a clip over HTTP and HTTPS", "VIRLOAdFramework");
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

void GstClipSource::registerElement()
{
    gst_element_register(nullptr, "virloclipsrc", GST_RANK_NONE, virlo_clip_source_get_type());
}

std::string GstClipSource::addressOf(const URL& url)
{
    const std::string scheme = url.scheme();
    if (scheme != "http" && scheme != "https")
        return url.absoluteString();
    return std::string(schemePrefix) + url.absoluteString();
}

bool GstClipSource::isOne(GstElement* source)
{
    return G_TYPE_CHECK_INSTANCE_TYPE(source, virlo_clip_source_get_type()) != FALSE;
}

void GstClipSource::setMeter(GstElement* source, std::shared_ptr<TransferMeter> meter)
{
    clipOf(source).meter = std::move(meter);
}

} // namespace virlo
