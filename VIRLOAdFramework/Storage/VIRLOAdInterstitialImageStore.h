#pragma once

#include "VIRLOCachedImageStore.h"
#include "VIRLOScreenshotsStoreProtocol.h"

#include <functional>

/// The interstitial's cover images and screenshots: 20 images in memory, at most 10 MiB, 100 thumbnails, at
/// most 5 MiB, and 100 screenshots, at most 10 MiB.
class VIRLOAdInterstitialImageStore : public VIRLOCachedImageStore, public VIRLOScreenshotsStoreProtocol
{
public:
    /// The process's one, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAdInterstitialImageStore> sharedStore();
    /// What `sharedStore` makes: a store on the same folders with memory caches of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOAdInterstitialImageStore> initSingleton();

    using VIRLOCachedImageStore::imageForItem;
    using VIRLOCachedImageStore::setImageForItem;
    /// Screenshots are written to the folder of thumbnails and read from the folder of images: an ad's
    /// screenshots change without a new identifier, so one is found only while it is in memory and downloaded
    /// again afterwards.
    [[nodiscard]] std::shared_ptr<const virlo::Image>
    imageForItemAtIndexPath(const VIRLOAdItem& item, const virlo::IndexPath& indexPath) override;
    void setImageForItemAtIndexPath(std::string bytes, const VIRLOAdItem& item,
                                    const virlo::IndexPath& indexPath) override;

    /// As above, at a reduced size where that is cheaper: at least as large as an image of this shape that
    /// covers `width` × `height` pixels, and never larger than the original.
    [[nodiscard]] std::shared_ptr<const virlo::Image>
    imageForItemAtIndexPathCovering(const VIRLOAdItem& item, const virlo::IndexPath& indexPath, int width,
                                    int height);
    /// Whether there are bytes for it; decodes nothing.
    [[nodiscard]] bool hasImageForItemAtIndexPath(const VIRLOAdItem& item, const virlo::IndexPath& indexPath);

    /// "<identifier>_<section>_<row>"; nothing for an item without identifier.
    [[nodiscard]] static std::optional<std::string>
    cacheIndetifierForScreenshotOfItemAtIndexPath(const VIRLOAdItem& item, const virlo::IndexPath& indexPath);

private:
    VIRLOAdInterstitialImageStore();

    using Decode = std::shared_ptr<const virlo::Image>(const std::string& bytes);
    [[nodiscard]] std::shared_ptr<const virlo::Image> screenshot(const VIRLOAdItem& item,
                                                                 const virlo::IndexPath& indexPath,
                                                                 const std::function<Decode>& decode);

    Cache m_screenshotsCache;
};
