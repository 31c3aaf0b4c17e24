#pragma once

#include "VIRLOImageStore.h"

/// The full-screen ad's images, on disk only; there are no thumbnails. The last few images that cannot be
/// written (the disk is full or broken, or the identifier is no file name) are kept in memory instead, so
/// that they can be shown at all.
class VIRLOAdFullscreenImageStore : public VIRLOImageStore
{
public:
    /// The process's one, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAdFullscreenImageStore> sharedStore();
    /// What `sharedStore` makes: a store on the same folders with a memory cache of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOAdFullscreenImageStore> initSingleton();

    /// At full resolution.
    [[nodiscard]] std::shared_ptr<const virlo::Image> imageForItem(const VIRLOAdItem& item) override;
    void setImageForItem(std::string bytes, const VIRLOAdItem& item) override;

private:
    VIRLOAdFullscreenImageStore();
};
