#include "GstPipeline.h"

#include "GstSinks.h"
#include "GstVideoSource.h"
#include "TransferMeter.h"

#include <map>
#include <mutex>
#include <numeric>
#include <string_view>
#include <utility>

namespace virlo
{

/// What GStreamer's threads use; each of its callbacks holds it.
struct GstPipeline::Shared {
    Options options;
    std::mutex mutex = {};
    std::map<const void*, guint64> dropped = {}; ///< frames, by the element that dropped them; under `mutex`
};

namespace
{

using SharedPointer = std::shared_ptr<GstPipeline::Shared>;

gpointer handle(const SharedPointer& shared)
{
    return new SharedPointer(shared);
}

GstPipeline::Shared& sharedOf(gpointer handle)
{
    return **static_cast<SharedPointer*>(handle);
}

void dropHandle(gpointer handle)
{
    delete static_cast<SharedPointer*>(handle);
}

void dropClosureHandle(gpointer handle, GClosure*)
{
    dropHandle(handle);
}

void setUpSource(GstElement*, GstElement* source, gpointer user)
{
    const GstPipeline::Options& options = sharedOf(user).options;
    if (GstVideoSource::isOne(source))
        GstVideoSource::setUp(source, options.meter, options.limits);
}

/// Up to this size a single thread decodes fast enough on any device with a television's screen; each further
/// one costs a frame and the decoder's tables again.
constexpr int mostPixelsOfOneThread = 1280 * 720;

GstPadProbeReturn chooseThreads(GstPad* pad, GstPadProbeInfo* info, gpointer)
{
    GstEvent* const event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS)
        return GST_PAD_PROBE_OK;
    GstCaps* caps = nullptr;
    gst_event_parse_caps(event, &caps);
    const GstStructure* const format = gst_caps_get_structure(caps, 0);
    gint width = 0;
    gint height = 0;
    const bool isSmall = gst_structure_get_int(format, "width", &width) != FALSE &&
                         gst_structure_get_int(format, "height", &height) != FALSE &&
                         gint64{width} * height <= mostPixelsOfOneThread;
    const GstPointer<GstElement> decoder(gst_pad_get_parent_element(pad));
    g_object_set(decoder.get(), "max-threads", isSmall ? 1 : 0, nullptr);
    return GST_PAD_PROBE_OK;
}

/// GStreamer's own elements are configured for throughput; here memory counts.
void setUpElement(GstElement*, GstElement* element, gpointer)
{
    const std::string_view name(GST_OBJECT_NAME(element));
    if (name.starts_with("vqueue"))
        g_object_set(element, "max-size-buffers", 1U, nullptr);
    else if (std::string_view(G_OBJECT_TYPE_NAME(element)).starts_with("avdec_") &&
             g_object_class_find_property(G_OBJECT_GET_CLASS(element), "max-threads") != nullptr) {
        const GstPointer<GstPad> pad(gst_element_get_static_pad(element, "sink"));
        gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, chooseThreads, nullptr, nullptr);
    }
}

// Messages

bool matters(GstMessage* message)
{
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
    case GST_MESSAGE_EOS:
    case GST_MESSAGE_BUFFERING:
    case GST_MESSAGE_ASYNC_DONE:
    case GST_MESSAGE_DURATION_CHANGED:
    case GST_MESSAGE_CLOCK_LOST:
    case GST_MESSAGE_LATENCY:
        return true;
    case GST_MESSAGE_ELEMENT:
        return gst_message_has_name(message, "missing-plugin") != FALSE;
    default:
        return false;
    }
}

/// The sink drops late frames, and the decoder those that would be late.
void noteDropped(GstPipeline::Shared& shared, GstMessage* message)
{
    GstFormat format = GST_FORMAT_UNDEFINED;
    guint64 processed = 0;
    guint64 dropped = 0;
    gst_message_parse_qos_stats(message, &format, &processed, &dropped);
    // Sound counts otherwise.
    if (format != GST_FORMAT_BUFFERS)
        return;
    const std::lock_guard lock(shared.mutex);
    shared.dropped[GST_MESSAGE_SRC(message)] = dropped;
}

GstBusSyncReply passMessage(GstBus*, GstMessage* message, gpointer user)
{
    GstMessagePointer taken(message);
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_QOS)
        noteDropped(sharedOf(user), message);
    if (matters(message))
        sharedOf(user).options.message(std::move(taken));
    return GST_BUS_DROP;
}

} // namespace

std::unique_ptr<GstPipeline> GstPipeline::make(Options options)
{
    std::unique_ptr<GstPipeline> pipeline(new GstPipeline);
    const auto shared = pipeline->m_shared = std::shared_ptr<Shared>(new Shared{std::move(options)});
    // Not playbin3: its decodebin3 (1.22.0) crashes at times when it is torn down while it still plugs
    // decoders, and some very short videos never end. Its advantage, items that share a pipeline, is not used
    // here.
    pipeline->m_playbin = makeGstElement("playbin");
    pipeline->m_soundDevice = openSoundDevice();
    pipeline->m_soundBin = makeAudioSink(pipeline->m_soundDevice.get());
    const auto videoSink = makeVideoSink(shared->options.frames);
    if (!pipeline->m_playbin || !pipeline->m_soundBin || !videoSink)
        return nullptr;
    GstElement* const playbin = pipeline->m_playbin.get();
    // Frames are converted by the video sink; the volume is the pipeline's, since a sound server would
    // remember that this program was muted.
    gst_util_set_object_arg(G_OBJECT(playbin), "flags", "video+audio+native-video+soft-volume+buffering");
    g_object_set(playbin, "uri", GstVideoSource::addressOf(shared->options.url).c_str(), "video-sink",
                 videoSink.get(), "audio-sink", pipeline->m_soundBin.get(), "mute",
                 static_cast<gboolean>(shared->options.muted), nullptr);
    g_signal_connect_data(playbin, "source-setup", G_CALLBACK(setUpSource), handle(shared), dropClosureHandle,
                          static_cast<GConnectFlags>(0));
    g_signal_connect(playbin, "element-setup", G_CALLBACK(setUpElement), nullptr);
    GstBus* const bus = gst_element_get_bus(playbin);
    gst_bus_set_sync_handler(bus, passMessage, handle(shared), dropHandle);
    gst_object_unref(bus);
    return pipeline;
}

GstPipeline::~GstPipeline()
{
    if (!m_playbin)
        return;
    gst_element_set_state(m_playbin.get(), GST_STATE_NULL);
    GstBus* const bus = gst_element_get_bus(m_playbin.get());
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
}

bool GstPipeline::setState(GstState state)
{
    return gst_element_set_state(m_playbin.get(), state) != GST_STATE_CHANGE_ASYNC;
}

void GstPipeline::setMuted(bool muted)
{
    g_object_set(m_playbin.get(), "mute", static_cast<gboolean>(muted), nullptr);
}

bool GstPipeline::dropSound()
{
    if (!m_soundDevice || std::exchange(m_soundDropped, true))
        return false;
    setState(GST_STATE_PAUSED);
    replaceSoundDevice(*m_soundBin, *m_soundDevice);
    return true;
}

void GstPipeline::recalculateLatency()
{
    gst_bin_recalculate_latency(GST_BIN(m_playbin.get()));
}

std::optional<GstClockTime> GstPipeline::position() const
{
    gint64 time = -1;
    if (gst_element_query_position(m_playbin.get(), GST_FORMAT_TIME, &time) == FALSE || time < 0)
        return std::nullopt;
    return static_cast<GstClockTime>(time);
}

std::optional<GstClockTime> GstPipeline::duration() const
{
    gint64 time = -1;
    if (gst_element_query_duration(m_playbin.get(), GST_FORMAT_TIME, &time) == FALSE || time < 0)
        return std::nullopt;
    return static_cast<GstClockTime>(time);
}

long GstPipeline::lateFrames() const
{
    const std::lock_guard lock(m_shared->mutex);
    return std::accumulate(m_shared->dropped.begin(), m_shared->dropped.end(), 0L,
                           [](long sum, const auto& one) { return sum + static_cast<long>(one.second); });
}

bool GstPipeline::isPipeline(const GstMessage& message) const
{
    return GST_MESSAGE_SRC(&message) == GST_OBJECT_CAST(m_playbin.get());
}

bool GstPipeline::isSoundDevice(const GstMessage& message) const
{
    GstObject* const device = GST_OBJECT_CAST(m_soundDevice.get());
    return device != nullptr && (GST_MESSAGE_SRC(&message) == device ||
                                 gst_object_has_as_ancestor(GST_MESSAGE_SRC(&message), device) != FALSE);
}

} // namespace virlo
