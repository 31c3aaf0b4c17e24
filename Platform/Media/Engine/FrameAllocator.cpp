#include "FrameAllocator.h"

#include <gst/video/video.h>

#include <sys/mman.h>

namespace virlo
{

namespace
{

struct Mapping {
    void* address;
    gsize size;
};

void unmap(gpointer data)
{
    auto* const mapping = static_cast<Mapping*>(data);
    ::munmap(mapping->address, mapping->size);
    delete mapping;
}

GstMemory* allocate(GstAllocator*, gsize size, GstAllocationParams* params)
{
    // Pages are aligned as well as any decoder wants.
    const gsize whole = params->prefix + size + params->padding;
    void* const address = ::mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED)
        return nullptr;
    return gst_memory_new_wrapped(params->flags, address, whole, params->prefix, size,
                                  new Mapping{address, whole}, unmap);
}

struct FrameAllocator {
    GstAllocator base;
};

struct FrameAllocatorClass {
    GstAllocatorClass base;
};

G_DEFINE_TYPE(FrameAllocator, virlo_frame_allocator, GST_TYPE_ALLOCATOR) // NOLINT

void virlo_frame_allocator_init(FrameAllocator*) {}

void virlo_frame_allocator_class_init(FrameAllocatorClass* type)
{
    GST_ALLOCATOR_CLASS(type)->alloc = allocate;
}

GstPadProbeReturn addAllocator(GstPad*, GstPadProbeInfo* info, gpointer allocator)
{
    GstQuery* const query = GST_PAD_PROBE_INFO_QUERY(info);
    if (GST_QUERY_TYPE(query) == GST_QUERY_ALLOCATION) {
        gst_query_add_allocation_param(query, GST_ALLOCATOR(allocator), nullptr);
        gst_query_add_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr);
    }
    return GST_PAD_PROBE_OK;
}

} // namespace

void offerFrameAllocator(GstPad& sinkPad)
{
    gpointer const allocator = gst_object_ref_sink(g_object_new(virlo_frame_allocator_get_type(), nullptr));
    gst_pad_add_probe(
        &sinkPad, static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM | GST_PAD_PROBE_TYPE_PUSH),
        addAllocator, allocator, gst_object_unref);
}

} // namespace virlo
