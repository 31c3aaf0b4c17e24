#include "GstSinks.h"

#include "FrameStore.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <atomic>
#include <chrono>
#include <string_view>
#include <utility>

namespace virlo
{

namespace
{

/// Larger frames are refused: more than any television shows.
constexpr int maximumSide = 4096;
/// About when the next frame is due. Later ones are dropped on a device that is too slow, to stay with the
/// sound.
constexpr gint64 maximumLateness = 40 * GST_MSECOND;
#if G_BYTE_ORDER == G_LITTLE_ENDIAN
constexpr const char* pixelFormat = "BGRx";
#else
constexpr const char* pixelFormat = "xRGB";
#endif

/// A system without a sound device is asked again only after this: asking costs tens of milliseconds, and the
/// sound libraries print to the standard error each time.
constexpr std::chrono::seconds soundlessFor{60};

using Store = std::shared_ptr<FrameStore>;

FrameStore& storeOf(gpointer handle)
{
    return **static_cast<Store*>(handle);
}

void dropStore(gpointer handle)
{
    delete static_cast<Store*>(handle);
}

/// A sample's frame, mapped as long as anybody holds it.
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

std::shared_ptr<const VideoFrame> frameOf(GstSample* sample)
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
    auto frame = std::make_shared<VideoFrame>();
    frame->bits = static_cast<const unsigned char*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped->frame, 0));
    frame->width = GST_VIDEO_FRAME_WIDTH(&mapped->frame);
    frame->height = GST_VIDEO_FRAME_HEIGHT(&mapped->frame);
    frame->bytesPerLine = GST_VIDEO_FRAME_PLANE_STRIDE(&mapped->frame, 0);
    frame->aspectRatio =
        static_cast<double>(info.width) * info.par_n / (static_cast<double>(info.height) * info.par_d);
    frame->memory = mapped;
    return frame;
}

GstFlowReturn take(GstSample* sample, gpointer user)
{
    if (sample == nullptr)
        return GST_FLOW_OK;
    if (auto frame = frameOf(sample))
        storeOf(user).put(std::move(frame));
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

GstPointer<GstElement> makeAppSink(const std::shared_ptr<FrameStore>& frames)
{
    auto sink = makeGstElement("appsink");
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
    gst_app_sink_set_callbacks(GST_APP_SINK(sink.get()), &callbacks, new Store(frames), dropStore);
    return sink;
}

/// The best device that opens among those with a rank for default use. `autoaudiosink` would also try the
/// others, each of which loads its sound system's libraries.
GstPointer<GstElement> openBestDevice()
{
    GList* const factories = gst_element_factory_list_get_elements(
        GST_ELEMENT_FACTORY_TYPE_SINK | GST_ELEMENT_FACTORY_TYPE_MEDIA_AUDIO, GST_RANK_PRIMARY);
    GstPointer<GstElement> opened;
    for (const GList* one = factories; one != nullptr && !opened; one = one->next) {
        const std::string_view name(GST_OBJECT_NAME(one->data));
        // Ranked for default use, but its libraries take 4 MiB before they find no server.
        auto sink = name != "jackaudiosink" ? makeGstElement(name.data()) : nullptr;
        if (!sink)
            continue;
        if (gst_element_set_state(sink.get(), GST_STATE_READY) == GST_STATE_CHANGE_FAILURE)
            gst_element_set_state(sink.get(), GST_STATE_NULL);
        else
            opened = std::move(sink);
    }
    gst_plugin_feature_list_free(factories);
    return opened;
}

constexpr const char* entranceName = "entrance";

/// Hands sound and format on by itself, in order to keep the device's refusals from the pipeline, which they
/// would stop. The device also posts an error message, upon which it is replaced.
GstPadProbeReturn passSound(GstPad* pad, GstPadProbeInfo* info, gpointer)
{
    const GstPointer<GstPad> device(gst_pad_get_peer(pad));
    const bool isBuffer = (GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER) != 0;
    if (!isBuffer && GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) != GST_EVENT_CAPS)
        return GST_PAD_PROBE_OK;
    if (!device)
        return GST_PAD_PROBE_DROP; // it is being replaced
    if (isBuffer) {
        const GstFlowReturn flow = gst_pad_chain(device.get(), GST_PAD_PROBE_INFO_BUFFER(info));
        GST_PAD_PROBE_INFO_FLOW_RETURN(info) = flow == GST_FLOW_EOS ? GST_FLOW_EOS : GST_FLOW_OK;
    } else {
        gst_pad_send_event(device.get(), GST_PAD_PROBE_INFO_EVENT(info));
    }
    return GST_PAD_PROBE_HANDLED;
}

GstPointer<GstElement> makeSilentSink()
{
    auto sink = makeGstElement("fakesink");
    if (sink)
        g_object_set(sink.get(), "sync", TRUE, nullptr);
    return sink;
}

} // namespace

GstPointer<GstElement> makeGstElement(const char* factory)
{
    GstElement* const element = gst_element_factory_make(factory, nullptr);
    return GstPointer<GstElement>(element != nullptr ? static_cast<GstElement*>(gst_object_ref_sink(element))
                                                     : nullptr);
}

GstPointer<GstElement> makeVideoSink(const std::shared_ptr<FrameStore>& frames)
{
    const auto convert = makeGstElement("videoconvert");
    const auto appSink = makeAppSink(frames);
    if (!convert || !appSink)
        return nullptr;
    GstPointer<GstElement> bin(static_cast<GstElement*>(gst_object_ref_sink(gst_bin_new(nullptr))));
    gst_bin_add_many(GST_BIN(bin.get()), convert.get(), appSink.get(), nullptr);
    gst_element_link(convert.get(), appSink.get());
    const GstPointer<GstPad> pad(gst_element_get_static_pad(convert.get(), "sink"));
    gst_element_add_pad(bin.get(), gst_ghost_pad_new("sink", pad.get()));
    return bin;
}

GstPointer<GstElement> openSoundDevice()
{
    using Instant = std::chrono::steady_clock::time_point;
    constinit static std::atomic<Instant> foundNone = Instant();
    const auto now = Instant::clock::now();
    const Instant last = foundNone;
    if (last != Instant() && now - last <= soundlessFor)
        return nullptr;
    auto device = openBestDevice();
    if (!device)
        foundNone = now;
    return device;
}

GstPointer<GstElement> makeAudioSink(GstElement* device)
{
    if (device == nullptr)
        return makeSilentSink();
    const auto identity = makeGstElement("identity");
    if (!identity)
        return nullptr;
    GstPointer<GstElement> bin(static_cast<GstElement*>(gst_object_ref_sink(gst_bin_new(nullptr))));
    gst_element_set_name(identity.get(), entranceName);
    gst_bin_add_many(GST_BIN(bin.get()), identity.get(), device, nullptr);
    gst_element_link(identity.get(), device);
    const GstPointer<GstPad> exit(gst_element_get_static_pad(identity.get(), "src"));
    gst_pad_add_probe(
        exit.get(),
        static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM),
        passSound, nullptr, nullptr);
    const GstPointer<GstPad> entrance(gst_element_get_static_pad(identity.get(), "sink"));
    gst_element_add_pad(bin.get(), gst_ghost_pad_new("sink", entrance.get()));
    return bin;
}

void replaceSoundDevice(GstElement& sink, GstElement& device)
{
    const auto silent = makeSilentSink();
    const GstPointer<GstElement> entrance(gst_bin_get_by_name(GST_BIN(&sink), entranceName));
    gst_element_set_state(&device, GST_STATE_NULL);
    gst_bin_remove(GST_BIN(&sink), &device);
    if (!silent)
        return;
    // A second preroll would wait for sound that has already passed.
    g_object_set(silent.get(), "async", FALSE, nullptr);
    gst_bin_add(GST_BIN(&sink), silent.get());
    gst_element_sync_state_with_parent(silent.get());
    gst_element_link(entrance.get(), silent.get());
}

} // namespace virlo
