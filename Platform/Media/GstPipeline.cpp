#include "GstPipeline.h"

#include "FrameStore.h"
#include "MediaAuthorities.h"
#include "TransferMeter.h"
#include "URLSession.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <atomic>
#include <chrono>
#include <string_view>
#include <utility>

namespace virlo
{

/// What GStreamer's threads use; each of its callbacks holds it.
struct GstPipeline::Shared {
    Options options;
    GstPointer<GTlsDatabase> authorities;
};

namespace
{

using SharedPointer = std::shared_ptr<GstPipeline::Shared>;

/// The most that is decoded: above a television's own, and little enough for a frame to be had.
constexpr int maximumSide = 4096;
/// Later than this the next picture is due; behind it, on a device that is too slow, pictures are left out so
/// that they stay with the sound.
constexpr gint64 maximumLateness = 40 * GST_MSECOND;
constexpr guint networkTimeoutSeconds = 15;

#if G_BYTE_ORDER == G_LITTLE_ENDIAN
constexpr const char* pixelFormat = "BGRx";
#else
constexpr const char* pixelFormat = "xRGB";
#endif

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

// Pictures

/// A sample's picture, mapped as long as anybody holds it.
struct MappedSample {
    explicit MappedSample(GstSample* taken) : sample(taken) {}

    MappedSample(const MappedSample&) = delete;
    MappedSample& operator=(const MappedSample&) = delete;

    ~MappedSample()
    {
        if (isMapped)
            gst_video_frame_unmap(&frame);
        gst_sample_unref(sample);
    }

    GstSample* sample;
    GstVideoFrame frame{};
    bool isMapped = false;
};

std::shared_ptr<const VideoFrame> pictureOf(GstSample* sample)
{
    const auto mapped = std::make_shared<MappedSample>(sample);
    GstVideoInfo info;
    GstCaps* const caps = gst_sample_get_caps(sample);
    if (caps == nullptr || gst_video_info_from_caps(&info, caps) == FALSE)
        return nullptr;
    GstBuffer* const buffer = gst_sample_get_buffer(sample);
    mapped->isMapped = gst_video_frame_map(&mapped->frame, &info, buffer, GST_MAP_READ) != FALSE;
    if (!mapped->isMapped)
        return nullptr;
    auto picture = std::make_shared<VideoFrame>();
    picture->bits = static_cast<const unsigned char*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped->frame, 0));
    picture->width = GST_VIDEO_FRAME_WIDTH(&mapped->frame);
    picture->height = GST_VIDEO_FRAME_HEIGHT(&mapped->frame);
    picture->bytesPerLine = GST_VIDEO_FRAME_PLANE_STRIDE(&mapped->frame, 0);
    picture->aspectRatio =
        static_cast<double>(info.width) * info.par_n / (static_cast<double>(info.height) * info.par_d);
    picture->memory = mapped;
    return picture;
}

GstFlowReturn take(GstSample* sample, gpointer user)
{
    if (sample == nullptr)
        return GST_FLOW_OK;
    if (auto picture = pictureOf(sample))
        sharedOf(user).options.frames->put(std::move(picture));
    return GST_FLOW_OK;
}

GstFlowReturn takeSample(GstAppSink* sink, gpointer user)
{
    return take(gst_app_sink_try_pull_sample(sink, 0), user);
}

GstFlowReturn takePreroll(GstAppSink* sink, gpointer user)
{
    return take(gst_app_sink_try_pull_preroll(sink, 0), user);
}

GstPointer<GstElement> makeElement(const char* factory)
{
    GstElement* const element = gst_element_factory_make(factory, nullptr);
    return GstPointer<GstElement>(element != nullptr ? static_cast<GstElement*>(gst_object_ref_sink(element))
                                                     : nullptr);
}

GstPointer<GstElement> makeAppSink(const SharedPointer& shared)
{
    auto sink = makeElement("appsink");
    if (!sink)
        return nullptr;
    GstCaps* const caps =
        gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, pixelFormat, "width", GST_TYPE_INT_RANGE,
                            1, maximumSide, "height", GST_TYPE_INT_RANGE, 1, maximumSide, nullptr);
    g_object_set(sink.get(), "caps", caps, "sync", TRUE, "max-buffers", 1U, "drop", TRUE, "qos", TRUE,
                 "max-lateness", maximumLateness, "enable-last-sample", FALSE, nullptr);
    gst_caps_unref(caps);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_preroll = takePreroll;
    callbacks.new_sample = takeSample;
    gst_app_sink_set_callbacks(GST_APP_SINK(sink.get()), &callbacks, handle(shared), dropHandle);
    return sink;
}

/// Converts where the decoder gives another format, and only there.
GstPointer<GstElement> makeVideoSink(GstElement& appSink)
{
    const auto convert = makeElement("videoconvert");
    if (!convert)
        return nullptr;
    GstPointer<GstElement> bin(static_cast<GstElement*>(gst_object_ref_sink(gst_bin_new(nullptr))));
    gst_bin_add_many(GST_BIN(bin.get()), convert.get(), &appSink, nullptr);
    gst_element_link(convert.get(), &appSink);
    const GstPointer<GstPad> pad(gst_element_get_static_pad(convert.get(), "sink"));
    gst_element_add_pad(bin.get(), gst_ghost_pad_new("sink", pad.get()));
    return bin;
}

// Sound

/// A device without a way out for the sound is asked again only after a while: asking costs tens of
/// milliseconds, and the sound libraries complain on the standard error each time.
constexpr std::chrono::seconds soundlessFor{60};

/// The way out that suits this device best; a clock that takes the sound's pace where there is none.
GstPointer<GstElement> makeAudioSink(bool soundless)
{
    using Instant = std::chrono::steady_clock::time_point;
    constinit static std::atomic<Instant> foundNone = Instant();
    const auto now = Instant::clock::now();
    const Instant last = foundNone;
    if (!soundless && (last == Instant() || now - last > soundlessFor)) {
        auto sink = makeElement("autoaudiosink");
        if (sink && gst_element_set_state(sink.get(), GST_STATE_READY) != GST_STATE_CHANGE_FAILURE) {
            const GList* const chosen = GST_BIN_CHILDREN(sink.get());
            if (chosen != nullptr && std::string_view(G_OBJECT_TYPE_NAME(chosen->data)) != "GstFakeSink")
                return sink;
        }
        if (sink)
            gst_element_set_state(sink.get(), GST_STATE_NULL);
        foundNone = now;
    }
    auto sink = makeElement("fakesink");
    if (sink)
        g_object_set(sink.get(), "sync", TRUE, nullptr);
    return sink;
}

// Transfer

std::uint64_t bytesOf(GstPadProbeInfo* info)
{
    if ((GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER) != 0)
        return gst_buffer_get_size(GST_PAD_PROBE_INFO_BUFFER(info));
    return gst_buffer_list_calculate_size(GST_PAD_PROBE_INFO_BUFFER_LIST(info));
}

GstPadProbeReturn countTransfer(GstPad*, GstPadProbeInfo* info, gpointer user)
{
    TransferMeter& meter = *sharedOf(user).options.meter;
    const GstPadProbeType type = GST_PAD_PROBE_INFO_TYPE(info);
    if ((type & GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM) != 0) {
        if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_EOS)
            meter.finished();
        return GST_PAD_PROBE_OK;
    }
    meter.arrived(bytesOf(info), TransferMeter::Instant::clock::now());
    return GST_PAD_PROBE_OK;
}

/// Runs when the pad has just handed a piece on.
GstPadProbeReturn noteHandover(GstPad*, GstPadProbeInfo*, gpointer user)
{
    sharedOf(user).options.meter->handedOn(TransferMeter::Instant::clock::now());
    return GST_PAD_PROBE_PASS;
}

void watchTransfer(GstElement* source, gpointer user)
{
    const GstPointer<GstPad> pad(gst_element_get_static_pad(source, "src"));
    if (!pad)
        return;
    const SharedPointer& shared = *static_cast<SharedPointer*>(user);
    constexpr auto counted = static_cast<GstPadProbeType>(
        GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM);
    gst_pad_add_probe(pad.get(), counted, countTransfer, handle(shared), dropHandle);
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_IDLE, noteHandover, handle(shared), dropHandle);
}

void setUpSource(GstElement*, GstElement* source, gpointer user)
{
    GObjectClass* const properties = G_OBJECT_GET_CLASS(source);
    if (g_object_class_find_property(properties, "tls-database") == nullptr) {
        // What is not read over the network is all there.
        sharedOf(user).options.meter->finished();
        return;
    }
    g_object_set(source, "timeout", networkTimeoutSeconds, nullptr);
    if (GTlsDatabase* const authorities = sharedOf(user).authorities.get())
        g_object_set(source, "tls-database", authorities, nullptr);
    watchTransfer(source, user);
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

GstBusSyncReply passMessage(GstBus*, GstMessage* message, gpointer user)
{
    GstMessagePointer taken(message);
    if (matters(message))
        sharedOf(user).options.message(std::move(taken));
    return GST_BUS_DROP;
}

} // namespace

std::unique_ptr<GstPipeline> GstPipeline::make(Options options)
{
    std::unique_ptr<GstPipeline> pipeline(new GstPipeline);
    const auto shared = pipeline->m_shared = std::make_shared<Shared>(Shared{std::move(options), nullptr});
    shared->authorities =
        mediaAuthorities(URLSessionConfiguration::defaultConfiguration().trustedAuthoritiesFile);
    pipeline->m_playbin = makeElement("playbin3");
    pipeline->m_audioSink = makeAudioSink(shared->options.soundless);
    pipeline->m_appSink = makeAppSink(shared);
    if (!pipeline->m_playbin || !pipeline->m_audioSink || !pipeline->m_appSink)
        return nullptr;
    const auto videoSink = makeVideoSink(*pipeline->m_appSink);
    if (!videoSink)
        return nullptr;
    GstElement* const playbin = pipeline->m_playbin.get();
    // The pictures' conversion is our own; the volume is our own too, since a sound server would remember
    // that this program was muted.
    gst_util_set_object_arg(G_OBJECT(playbin), "flags", "video+audio+native-video+soft-volume+buffering");
    g_object_set(playbin, "uri", shared->options.url.absoluteString().c_str(), "video-sink", videoSink.get(),
                 "audio-sink", pipeline->m_audioSink.get(), "mute",
                 static_cast<gboolean>(shared->options.muted), nullptr);
    g_signal_connect_data(playbin, "source-setup", G_CALLBACK(setUpSource), handle(shared), dropClosureHandle,
                          static_cast<GConnectFlags>(0));
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

void GstPipeline::setState(GstState state)
{
    gst_element_set_state(m_playbin.get(), state);
}

void GstPipeline::setMuted(bool muted)
{
    g_object_set(m_playbin.get(), "mute", static_cast<gboolean>(muted), nullptr);
}

void GstPipeline::seek(GstClockTime time)
{
    gst_element_seek_simple(m_playbin.get(), GST_FORMAT_TIME,
                            static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                            static_cast<gint64>(time));
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
    GstStructure* statistics = nullptr;
    g_object_get(m_appSink.get(), "stats", &statistics, nullptr);
    if (statistics == nullptr)
        return 0;
    guint64 dropped = 0;
    gst_structure_get_uint64(statistics, "dropped", &dropped);
    gst_structure_free(statistics);
    return static_cast<long>(dropped);
}

bool GstPipeline::isPipeline(const GstMessage& message) const
{
    return GST_MESSAGE_SRC(&message) == GST_OBJECT_CAST(m_playbin.get());
}

bool GstPipeline::isAudioSink(const GstMessage& message) const
{
    return gst_object_has_as_ancestor(GST_MESSAGE_SRC(&message), GST_OBJECT_CAST(m_audioSink.get())) != FALSE;
}

} // namespace virlo
