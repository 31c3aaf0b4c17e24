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

/// The most that is decoded: above a television's own, and little enough for a frame to be had.
constexpr int maximumSide = 4096;
/// Later than this the next picture is due; behind it, on a device that is too slow, pictures are left out so
/// that they stay with the sound.
constexpr gint64 maximumLateness = 40 * GST_MSECOND;
#if G_BYTE_ORDER == G_LITTLE_ENDIAN
constexpr const char* pixelFormat = "BGRx";
#else
constexpr const char* pixelFormat = "xRGB";
#endif

/// A device without a way out for the sound is asked again only after a while: asking costs tens of
/// milliseconds, and the sound libraries complain on the standard error each time.
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
        storeOf(user).put(std::move(picture));
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

/// The best way out that opens, of those that the device's makers mean to be used. `autoaudiosink` would also
/// try the others, each of which brings its sound system's libraries into the process.
GstPointer<GstElement> openSound()
{
    GList* const factories = gst_element_factory_list_get_elements(
        GST_ELEMENT_FACTORY_TYPE_SINK | GST_ELEMENT_FACTORY_TYPE_MEDIA_AUDIO, GST_RANK_PRIMARY);
    GstPointer<GstElement> opened;
    for (const GList* one = factories; one != nullptr && !opened; one = one->next) {
        const std::string_view name(GST_OBJECT_NAME(one->data));
        // A studio's; ranked like a television's, and its libraries take 4 MiB before they find no server.
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

GstPointer<GstElement> makeAudioSink(bool soundless)
{
    using Instant = std::chrono::steady_clock::time_point;
    constinit static std::atomic<Instant> foundNone = Instant();
    const auto now = Instant::clock::now();
    const Instant last = foundNone;
    if (!soundless && (last == Instant() || now - last > soundlessFor)) {
        if (auto sink = openSound())
            return sink;
        foundNone = now;
    }
    auto sink = makeGstElement("fakesink");
    if (sink)
        g_object_set(sink.get(), "sync", TRUE, nullptr);
    return sink;
}

} // namespace virlo
