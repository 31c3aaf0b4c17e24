#include "Clips.h"

#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <unistd.h>

namespace virlo::test
{

namespace
{

std::string number(long value)
{
    return std::to_string(value);
}

/// A tenth of a second each, so that sound and frames end together.
long soundBuffers(const Clip& clip)
{
    return std::lround(clip.seconds * 10);
}

std::string pipelineText(const Clip& clip, const std::string& path)
{
    std::string text = clip.webm ? "webmmux name=mux" : "mp4mux name=mux faststart=true";
    text += " ! filesink location=" + path;
    if (clip.hasFrames) {
        text += " videotestsrc pattern=" + clip.pattern +
                " num-buffers=" + number(std::lround(clip.seconds * clip.framesPerSecond)) +
                " ! video/x-raw,format=I420,width=" + number(clip.width) + ",height=" + number(clip.height) +
                ",framerate=" + number(clip.framesPerSecond) + "/1" +
                (clip.colorimetry.empty() ? "" : ",colorimetry=" + clip.colorimetry);
        if (clip.webm)
            text += " ! vp9enc deadline=1 cpu-used=8 lag-in-frames=0 target-bitrate=" +
                    number(clip.kilobitsPerSecond * 1000);
        else
            text +=
                " ! x264enc speed-preset=ultrafast key-int-max=30 bitrate=" + number(clip.kilobitsPerSecond) +
                " ! h264parse";
        text += " ! queue ! mux.";
    }
    if (clip.sound) {
        text += " audiotestsrc samplesperbuffer=4800 num-buffers=" + number(soundBuffers(clip)) +
                " ! audio/x-raw,rate=48000,channels=2 ! ";
        text += clip.webm ? "opusenc" : "avenc_aac";
        text += " ! queue ! mux.";
    }
    return text;
}

void encode(const std::string& text)
{
    gst_init(nullptr, nullptr);
    GError* error = nullptr;
    GstElement* const pipeline = gst_parse_launch(text.c_str(), &error);
    ASSERT_EQ(error, nullptr) << error->message << " in " << text;
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* const bus = gst_element_get_bus(pipeline);
    GstMessage* const end = gst_bus_timed_pop_filtered(
        bus, 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    EXPECT_TRUE(end != nullptr && GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS) << text;
    gst_element_set_state(pipeline, GST_STATE_NULL);
    if (end != nullptr)
        gst_message_unref(end);
    gst_object_unref(bus);
    gst_object_unref(pipeline);
}

} // namespace

void writeClip(const std::string& path, const Clip& clip)
{
    std::ofstream(path, std::ios::binary) << clipBytes(clip);
}

std::string clipBytes(const Clip& clip)
{
    static std::map<std::string, std::string> made;
    const std::string path =
        (std::filesystem::temp_directory_path() / ("virlo-clip-" + number(getpid()))).string();
    const std::string text = pipelineText(clip, path);
    std::string& bytes = made[text];
    if (bytes.empty()) {
        encode(text);
        std::ifstream file(path, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        std::filesystem::remove(path);
    }
    return bytes;
}

} // namespace virlo::test
