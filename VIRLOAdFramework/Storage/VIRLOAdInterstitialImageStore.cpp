#include "VIRLOAdInterstitialImageStore.h"

#include "Image.h"
#include "StringFormat.h"
#include "VIRLOAdItem.h"

#include <utility>

VIRLOAdInterstitialImageStore::VIRLOAdInterstitialImageStore()
    : VIRLOCachedImageStore("VIRLOAdInterstitialImageStore")
{
    m_screenshotsCache.setCountLimit(100);
    m_screenshotsCache.setCostLimit(10 * mebibyte);
}

std::shared_ptr<VIRLOAdInterstitialImageStore> VIRLOAdInterstitialImageStore::sharedStore()
{
    // Never destroyed: workers may still use it while the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAdInterstitialImageStore>(initSingleton());
    return shared;
}

std::shared_ptr<VIRLOAdInterstitialImageStore> VIRLOAdInterstitialImageStore::initSingleton()
{
    return std::shared_ptr<VIRLOAdInterstitialImageStore>(new VIRLOAdInterstitialImageStore);
}

std::optional<std::string> VIRLOAdInterstitialImageStore::cacheIndetifierForScreenshotOfItemAtIndexPath(
    const VIRLOAdItem& item, const virlo::IndexPath& indexPath)
{
    if (!item.identifier())
        return std::nullopt;
    return virlo::format("%@_%ld_%ld", item.identifier(), indexPath.section, indexPath.row);
}

std::shared_ptr<const virlo::Image>
VIRLOAdInterstitialImageStore::imageForItemAtIndexPath(const VIRLOAdItem& item,
                                                       const virlo::IndexPath& indexPath)
{
    return screenshot(item, indexPath, [](const std::string& bytes) { return virlo::Image::decode(bytes); });
}

std::shared_ptr<const virlo::Image> VIRLOAdInterstitialImageStore::imageForItemAtIndexPathCovering(
    const VIRLOAdItem& item, const virlo::IndexPath& indexPath, int width, int height)
{
    return screenshot(item, indexPath, [=](const std::string& bytes) {
        return virlo::Image::decodeCovering(bytes, width, height);
    });
}

bool VIRLOAdInterstitialImageStore::hasImageForItemAtIndexPath(const VIRLOAdItem& item,
                                                               const virlo::IndexPath& indexPath)
{
    const Key key = cacheIndetifierForScreenshotOfItemAtIndexPath(item, indexPath);
    return recall(m_screenshotsCache, key) || readFile(imageCacheDirectory(), key);
}

std::shared_ptr<const virlo::Image>
VIRLOAdInterstitialImageStore::screenshot(const VIRLOAdItem& item, const virlo::IndexPath& indexPath,
                                          const std::function<Decode>& decode)
{
    const Key key = cacheIndetifierForScreenshotOfItemAtIndexPath(item, indexPath);
    if (const Bytes bytes = recall(m_screenshotsCache, key))
        return decode(*bytes);
    // Deliberately not the folder that they are written to, and cached as the item's own image: a screenshot
    // is kept for as long as it is in memory, and no longer.
    const Bytes bytes = readFile(imageCacheDirectory(), key);
    if (!bytes)
        return nullptr;
    auto image = decode(*bytes);
    if (image)
        remember(imageCache(), item.identifier(), bytes);
    return image;
}

void VIRLOAdInterstitialImageStore::setImageForItemAtIndexPath(std::string bytes, const VIRLOAdItem& item,
                                                               const virlo::IndexPath& indexPath)
{
    const Key key = cacheIndetifierForScreenshotOfItemAtIndexPath(item, indexPath);
    const auto screenshot = std::make_shared<const std::string>(std::move(bytes));
    remember(m_screenshotsCache, key, screenshot);
    writeFile(thumbnailCacheDirectory(), key, *screenshot);
}
