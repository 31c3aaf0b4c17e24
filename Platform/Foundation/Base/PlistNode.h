#pragma once

#include <memory>
#include <plist/plist.h>
#include <type_traits>

namespace virlo
{

struct PlistDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};

/// A node of a property list and everything below it. A node that is added to another one belongs to that
/// one and is held as a bare `plist_t`.
using PlistNode = std::unique_ptr<std::remove_pointer_t<plist_t>, PlistDeleter>;

} // namespace virlo
