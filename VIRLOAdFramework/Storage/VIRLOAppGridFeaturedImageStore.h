#pragma once

#include "VIRLOCachedImageStore.h"

/// The images of the app grid's banner: 20 in memory, at most 10 MiB, and 100 thumbnails, at most 5 MiB.
class VIRLOAppGridFeaturedImageStore : public VIRLOCachedImageStore
{
public:
    /// The process's one, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAppGridFeaturedImageStore> sharedStore();
    /// What `sharedStore` makes: a store on the same folders with memory caches of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOAppGridFeaturedImageStore> initSingleton();

private:
    VIRLOAppGridFeaturedImageStore();
};
