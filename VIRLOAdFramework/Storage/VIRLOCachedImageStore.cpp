#include "VIRLOCachedImageStore.h"

#include "FreeMemory.h"
#include "Image.h"
#include "VIRLOAdItem.h"
#include "VIRLORoundedCorners.h"

#include <utility>

using virlo::Image;

namespace
{

std::shared_ptr<const Image> decodeWhole(const std::string& bytes)
{
    return Image::decode(bytes);
}

} // namespace

VIRLOCachedImageStore::VIRLOCachedImageStore(const char* className) : VIRLOImageStore(className)
{
    imageCache().setCountLimit(20);
    imageCache().setCostLimit(10 * mebibyte);
    thumbnailCache().setCountLimit(100);
    thumbnailCache().setCostLimit(5 * mebibyte);
}

std::shared_ptr<const Image> VIRLOCachedImageStore::imageOf(Cache& cache, const std::string& directory,
                                                            const Key& key,
                                                            const std::function<Decode>& decode)
{
    if (const Bytes bytes = recall(cache, key))
        return decode(*bytes);
    const Bytes bytes = readFile(directory, key);
    if (!bytes)
        return nullptr;
    auto image = decode(*bytes);
    if (image)
        remember(cache, key, bytes);
    return image;
}

std::shared_ptr<const Image> VIRLOCachedImageStore::imageForItem(const VIRLOAdItem& item)
{
    return imageOf(imageCache(), imageCacheDirectory(), item.identifier(), decodeWhole);
}

std::shared_ptr<const Image> VIRLOCachedImageStore::thumbnailForItem(const VIRLOAdItem& item)
{
    const Key& key = item.identifier();
    auto thumbnail = imageOf(thumbnailCache(), thumbnailCacheDirectory(), key, decodeWhole);
    if (!thumbnail || thumbnail->width() >= VIRLORoundedCorners::thumbnailPixels())
        return thumbnail;
    // Made for a smaller window than today's: not sharp any more.
    Bytes image = recall(imageCache(), key);
    if (!image)
        image = readFile(imageCacheDirectory(), key);
    const Bytes bytes = image ? thumbnailOf(image) : nullptr;
    if (!bytes)
        return thumbnail;
    storeThumbnail(key, bytes);
    return decodeWhole(*bytes);
}

void VIRLOCachedImageStore::storeThumbnail(const Key& key, const Bytes& bytes)
{
    remember(thumbnailCache(), key, bytes);
    writeFile(thumbnailCacheDirectory(), key, *bytes);
}

std::shared_ptr<const Image> VIRLOCachedImageStore::imageForItemFilling(const VIRLOAdItem& item, int width,
                                                                        int height)
{
    const auto image =
        imageOf(imageCache(), imageCacheDirectory(), item.identifier(),
                [=](const std::string& bytes) { return Image::decodeCovering(bytes, width, height); });
    if (!image)
        return nullptr;
    const QSize wanted(width, height);
    QRect middle(QPoint(), wanted.scaled(image->qImage().size(), Qt::KeepAspectRatio));
    middle.moveCenter(image->qImage().rect().center());
    return Image::fromQImage(
        image->qImage().copy(middle).scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void VIRLOCachedImageStore::setImageForItem(std::string bytes, const VIRLOAdItem& item)
{
    const Key& key = item.identifier();
    const auto image = std::make_shared<const std::string>(std::move(bytes));
    remember(imageCache(), key, image);
    writeFile(imageCacheDirectory(), key, *image);
    if (const Bytes thumbnail = thumbnailOf(image))
        storeThumbnail(key, thumbnail);
    // Without this a process holds 20 MiB more after a grid of 800 cells.
    if (++m_imagesStored % imagesBetweenReturns == 0)
        virlo::returnFreeMemory();
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
