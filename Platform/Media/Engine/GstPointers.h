#pragma once

#include <gst/gst.h>

#include <memory>

namespace virlo
{

struct ObjectUnref {
    void operator()(gpointer object) const noexcept { g_object_unref(object); }
};

/// A reference of our own to a GObject.
template <typename T>
using GstPointer = std::unique_ptr<T, ObjectUnref>;

template <typename T>
[[nodiscard]] GstPointer<T> retained(T* object)
{
    return GstPointer<T>(static_cast<T*>(g_object_ref(object)));
}

struct MessageUnref {
    void operator()(GstMessage* message) const noexcept { gst_message_unref(message); }
};

using GstMessagePointer = std::unique_ptr<GstMessage, MessageUnref>;

} // namespace virlo
