// bench-pipeline FILE: GStreamer alone decodes the clip, converts its frames to BGRx and throws them and
// the sound away, at the clip's pace. Says "playing" once it plays and "ended" at the end.

#include <gst/gst.h>

#include <cstdio>
#include <string>

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    gst_init(nullptr, nullptr);
    const std::string text = "filesrc location=" + std::string(arguments[1]) +
                             " ! decodebin name=all all. ! queue ! videoconvert ! video/x-raw,format=BGRx ! "
                             "fakesink sync=true all. ! queue ! audioconvert ! fakesink sync=true";
    GstElement* const pipeline = gst_parse_launch(text.c_str(), nullptr);
    if (pipeline == nullptr)
        return 1;
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    if (gst_element_get_state(pipeline, nullptr, nullptr, 10 * GST_SECOND) != GST_STATE_CHANGE_SUCCESS)
        return 1;
    std::puts("playing");
    std::fflush(stdout);
    GstBus* const bus = gst_element_get_bus(pipeline);
    GstMessage* const message = gst_bus_timed_pop_filtered(
        bus, GST_CLOCK_TIME_NONE, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    const bool ended = GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
    gst_message_unref(message);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    std::puts("ended");
    return ended ? 0 : 1;
}
