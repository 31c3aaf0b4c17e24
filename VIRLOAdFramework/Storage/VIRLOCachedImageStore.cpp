#include "VIRLOCachedImageStore.h"

#include "Image.h"
#include "VIRLOAdItem.h"
#include "VIRLORoundedCorners.h"

#include <utility>

using virlo::Image;

VIRLOCachedImageStore::VIRLOCachedImageStore(const char* className) : VIRLOImageStore(className)
{
    imageCache().setCountLimit(20);
    imageCache().setCostLimit(10 * mebibyte);
    thumbnailCache().setCountLimit(100);
    thumbnailCache().setCostLimit(5 * mebibyte);
}

std::shared_ptr<const Image> VIRLOCachedImageStore::imageOf(Cache& cache, const std::string& directory,
                                                            const Key& key)
{
    if (const Bytes bytes = recall(cache, key))
        return Image::decode(*bytes);
    const Bytes bytes = readFile(directory, key);
    if (!bytes)
        return nullptr;
    auto image = Image::decode(*bytes);
    if (image)
        remember(cache, key, bytes);
    return image;
}

std::shared_ptr<const Image> VIRLOCachedImageStore::imageForItem(const VIRLOAdItem& item)
{
    return imageOf(imageCache(), imageCacheDirectory(), item.identifier());
}

std::shared_ptr<const Image> VIRLOCachedImageStore::thumbnailForItem(const VIRLOAdItem& item)
{
    return imageOf(thumbnailCache(), thumbnailCacheDirectory(), item.identifier());
}

void VIRLOCachedImageStore::setImageForItem(std::string bytes, const VIRLOAdItem& item)
{
    const Key& key = item.identifier();
    const auto image = std::make_shared<const std::string>(std::move(bytes));
    remember(imageCache(), key, image);
    writeFile(imageCacheDirectory(), key, *image);
    const Bytes thumbnail = thumbnailOf(image);
    if (!thumbnail)
        return;
    remember(thumbnailCache(), key, thumbnail);
    writeFile(thumbnailCacheDirectory(), key, *thumbnail);
}

VIRLOImageStore::Bytes VIRLOCachedImageStore::thumbnailOf(const Bytes& bytes) const
{
    // At a reduced size: a thumbnail needs a fiftieth of a full image's pixels.
    const int side = VIRLORoundedCorners::thumbnailPixels();
    const auto image = Image::decodeCovering(*bytes, side, side);
    if (!image)
        return nullptr;
    const auto thumbnail = VIRLORoundedCorners::VIRLO_thumbnailWithRoundedCorners(*image);
    auto data = thumbnail ? thumbnail->pngData() : std::string();
    return data.empty() ? nullptr : std::make_shared<const std::string>(std::move(data));
}
