#pragma once

#include <memory>
#include <string>

class VIRLOAdItem;

namespace virlo
{
class Image;
}

/// Keeps an item's image between its download and its presentation. Every call may block for the disk and for
/// decoding. Any thread; nothing fails: what cannot be read is absent.
class VIRLOImageStoreProtocol
{
public:
    virtual ~VIRLOImageStoreProtocol() = default;

    /// Decoded, or null.
    [[nodiscard]] virtual std::shared_ptr<const virlo::Image> imageForItem(const VIRLOAdItem& item) = 0;
    [[nodiscard]] virtual std::shared_ptr<const virlo::Image> thumbnailForItem(const VIRLOAdItem& item) = 0;
    /// `bytes` as they were downloaded, which may be no image at all.
    virtual void setImageForItem(std::string bytes, const VIRLOAdItem& item) = 0;
};
