#pragma once

#include "IndexPath.h"

#include <memory>
#include <string>

class VIRLOAdItem;

namespace virlo
{
class Image;
}

/// What an image store also adopts where it keeps the screenshots of an item, each by its place. As
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
