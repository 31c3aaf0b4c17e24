#include "TestSound.h"

#include <gst/base/gstbasesink.h>
#include <gst/gst.h>

#include <algorithm>
#include <atomic>

namespace virlo::test
{

namespace
{

std::atomic<bool> isPulledOut = false;
std::atomic<int> audible = 0;

GstFlowReturn takeSound(GstBaseSink* sink, GstBuffer* buffer)
{
    if (isPulledOut.exchange(false)) {
        GST_ELEMENT_ERROR(sink, RESOURCE, WRITE, ("The sound device is gone"), (nullptr));
        return GST_FLOW_ERROR;
    }
    GstMapInfo map;
    if (gst_buffer_map(buffer, &map, GST_MAP_READ) != FALSE) {
        if (std::any_of(map.data, map.data + map.size, [](guint8 byte) { return byte != 0; }))
            ++audible;
        gst_buffer_unmap(buffer, &map);
    }
    return GST_FLOW_OK;
}

void setUpClass(gpointer classPointer, gpointer)
{
    auto* const element = GST_ELEMENT_CLASS(classPointer);
    gst_element_class_set_static_metadata(element, "Test sound", "Sink/Audio", "Takes sound", "virlo");
    GstCaps* const caps = gst_caps_from_string("audio/x-raw,format=S16LE,layout=interleaved");
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    GST_BASE_SINK_CLASS(classPointer)->render = takeSound;
}

} // namespace

void TestSound::install()
{
    gst_init(nullptr, nullptr);
    static const GType type =
        g_type_register_static_simple(GST_TYPE_BASE_SINK, "VirloTestSound", sizeof(GstBaseSinkClass),
                                      setUpClass, sizeof(GstBaseSink), nullptr, static_cast<GTypeFlags>(0));
    gst_element_register(nullptr, "virlotestsound", GST_RANK_PRIMARY + 100, type);
}

void TestSound::pullOut()
{
    isPulledOut = true;
}

int TestSound::heard()
{
    return audible;
}

} // namespace virlo::test
