#pragma once

#include "VIRLOImageStore.h"

/// The full-screen ad's pictures, on disk only; there are no thumbnails. What the disk does not take (it is
/// full or broken, or the identifier is no file name) is kept in memory instead, the last few pictures of it,
/// so that it can be shown at all.
class VIRLOAdFullscreenImageStore : public VIRLOImageStore
{
public:
    /// The process's one, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAdFullscreenImageStore> sharedStore();
    /// What `sharedStore` makes: a store on the same folders with a memory of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOAdFullscreenImageStore> initSingleton();

    /// A picture much larger than the canvas comes reduced, at the least size that still covers it.
    [[nodiscard]] std::shared_ptr<const virlo::Image> imageForItem(const VIRLOAdItem& item) override;
    void setImageForItem(std::string bytes, const VIRLOAdItem& item) override;

private:
    VIRLOAdFullscreenImageStore();
};
