#pragma once

#include "IndexPath.h"

#include <memory>
#include <string>

class VIRLOAdItem;

namespace virlo
{
class Image;
}

/// Adopted by an image store that also keeps the screenshots of an item, each by its index path. As
/// VIRLOImageStoreProtocol otherwise.
class VIRLOScreenshotsStoreProtocol
{
public:
    virtual ~VIRLOScreenshotsStoreProtocol() = default;

    [[nodiscard]] virtual std::shared_ptr<const virlo::Image>
    imageForItemAtIndexPath(const VIRLOAdItem& item, const virlo::IndexPath& indexPath) = 0;
    virtual void setImageForItemAtIndexPath(std::string bytes, const VIRLOAdItem& item,
                                            const virlo::IndexPath& indexPath) = 0;
};
