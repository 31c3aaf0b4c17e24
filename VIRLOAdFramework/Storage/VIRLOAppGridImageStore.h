#pragma once

#include "VIRLOCachedImageStore.h"

/// The app grid's images: 20 in memory, at most 10 MiB, and 100 thumbnails, at most 5 MiB. Bytes that are no
/// image by their first byte are their own thumbnail.
class VIRLOAppGridImageStore : public VIRLOCachedImageStore
{
public:
    /// The process's one, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAppGridImageStore> sharedStore();
    /// What `sharedStore` makes: a store on the same folders with memory caches of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOAppGridImageStore> initSingleton();

protected:
    [[nodiscard]] Bytes thumbnailOf(const Bytes& bytes) const override;

private:
    VIRLOAppGridImageStore();
};
