#include "Benchmarks.h"
#include "TestImages.h"

#include "Image.h"
#include "VIRLOAdItem.h"
#include "VIRLOAppGridFeaturedImageStore.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <stdexcept>

namespace
{

constexpr int rounds = 9;
constexpr int thumbnailSide = 150;

std::shared_ptr<VIRLOAdItem> item(const std::string& identifier)
{
    return VIRLOAdItem::initWithDictionary({{"cid", identifier}});
}

QImage decoded(const std::string& bytes)
{
    QImage image =
        QImage::fromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size()));
    if (image.isNull())
        throw std::runtime_error("the image does not decode");
    return image;
}

QByteArray thumbnailOf(const QImage& image)
{
    QImage thumbnail(thumbnailSide, thumbnailSide, QImage::Format_ARGB32_Premultiplied);
    thumbnail.fill(Qt::transparent);
    QPainter painter(&thumbnail);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath corners;
    corners.addRoundedRect(0, 0, thumbnailSide, thumbnailSide, 30, 30);
    painter.setClipPath(corners);
    const QImage scaled =
        image.scaled(thumbnailSide, thumbnailSide, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    painter.drawImage((thumbnailSide - scaled.width()) / 2, (thumbnailSide - scaled.height()) / 2, scaled);
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    thumbnail.save(&buffer, "PNG");
    return png;
}

} // namespace

void benchImages(Results& results)
{
    takeFreshMemory();
    const auto store = VIRLOAppGridFeaturedImageStore::sharedStore();
    const std::string bytes = adImage(1);
    const auto kept = item("kept");
    store->setImageForItem(bytes, *kept);

    int number = 0;
    const Pair stored = alternate(
        rounds,
        [&] {
            const auto fresh = item("stored-" + std::to_string(++number));
            return timed([&] { store->setImageForItem(bytes, *fresh); });
        },
        [&] { return timed([&] { (void)thumbnailOf(decoded(bytes)); }); });
    results.addRatio("image and thumbnail stored, against decode + scale + PNG encode", stored.ours * 1e3,
                     stored.bare * 1e3, "ms", 1.0, true);

    const Pair hit = alternate(
        rounds,
        [&] {
            return timed([&] {
                if (!store->imageForItem(*kept))
                    throw std::runtime_error("the store lost its image");
            });
        },
        [&] { return timed([&] { (void)decoded(bytes); }); });
    results.addRatio("memory-cache hit, 1920x1080 JPEG, against the bare decode", hit.ours * 1e3,
                     hit.bare * 1e3, "ms", 1.05, true);
}
