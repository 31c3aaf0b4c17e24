#include "Image.h"

#include "QtWork.h"

#include <QBuffer>
#include <QImageReader>

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace virlo
{

namespace
{

constexpr int maximumSide = 32767;

/// An image on memory pages of its own, which go back to the system with it: each worker's heap would keep
/// the megabytes that a large image leaves (10 to 34 MiB after 96 ads). 32 bits a pixel; null where there is
/// no memory.
QImage imageOnOwnPages(QSize size, QImage::Format format)
{
    struct Pages {
        void* address;
        std::size_t length;
    };

    const qsizetype bytesPerLine = qsizetype{size.width()} * 4;
    const auto length = static_cast<std::size_t>(bytesPerLine * size.height());
    void* const address = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED)
        return {};
    // Four page faults instead of two thousand, which take as long as decoding does.
    madvise(address, length, MADV_HUGEPAGE);
    const auto release = [](void* info) {
        const std::unique_ptr<Pages> pages(static_cast<Pages*>(info));
        munmap(pages->address, pages->length);
    };
    return {static_cast<uchar*>(address), size.width(), size.height(), bytesPerLine, format, release,
            new Pages{address, length}};
}

bool isLarge(QSize size)
{
    constexpr qsizetype leastPixels = 65536;
    return qsizetype{size.width()} * size.height() >= leastPixels;
}

void premultiplyInPlace(QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::transform(line, line + image.width(), line, [](QRgb pixel) { return qPremultiply(pixel); });
    }
    image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage inSceneFormat(QImage image)
{
    const QImage::Format format =
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (image.format() != format)
        image.convertTo(format);
    image.setDevicePixelRatio(1);
    return image;
}

QSize sizeCovering(QSize original, QSize target)
{
    if (target.isEmpty())
        return original;
    const QSize scaled = original.scaled(target, Qt::KeepAspectRatioByExpanding);
    return scaled.width() < original.width() ? scaled : original;
}

/// `target` is empty for the image's own size.
QImage read(std::string_view bytes, QSize target)
{
    const QtWork work;
    if (!work.mayBegin())
        return {};
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    // Other formats that a device has plug-ins for are no ad images, and some (SVG) read files.
    constexpr std::array formats{"png", "jpeg", "gif", "bmp", "webp"};
    if (std::find(formats.begin(), formats.end(), format) == formats.end())
        return {};
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > maximumSide || size.height() > maximumSide ||
        static_cast<long long>(size.width()) * size.height() > Image::maximumPixels)
        return {};
    if (reader.transformation() & QImageIOHandler::TransformationRotate90)
        target.transpose();
    const QSize wanted = sizeCovering(size, target);
    if (wanted != size)
        reader.setScaledSize(wanted);

    // Qt decodes into the image that it is given where size and format are right.
    const QImage::Format decoded = reader.imageFormat();
    QImage image;
    if (isLarge(wanted) && (decoded == QImage::Format_RGB32 || decoded == QImage::Format_ARGB32))
        image = imageOnOwnPages(wanted, decoded);
    if (!reader.read(&image))
        return {};
    if (image.format() == QImage::Format_ARGB32)
        premultiplyInPlace(image);
    return image;
}

} // namespace

Image::Image(QImage image) : m_image(std::move(image)) {}

std::shared_ptr<const Image> Image::fromQImage(QImage image)
{
    if (image.isNull())
        return nullptr;
    image = inSceneFormat(std::move(image));
    if (image.isNull())
        return nullptr;
    return std::shared_ptr<const Image>(new Image(std::move(image)));
}

std::shared_ptr<const Image> Image::decode(std::string_view bytes)
{
    return fromQImage(read(bytes, {}));
}

std::shared_ptr<const Image> Image::decodeCovering(std::string_view bytes, int width, int height)
{
    return fromQImage(read(bytes, QSize(width, height)));
}

std::shared_ptr<const Image> Image::covering(int width, int height) const
{
    const QtWork work;
    const QSize wanted = sizeCovering(m_image.size(), QSize(width, height));
    if (!work.mayBegin() || wanted == m_image.size())
        return shared_from_this();
    return fromQImage(m_image.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

std::shared_ptr<const Image> Image::named(const std::string& resourcePath)
{
    const QtWork work;
    return work.mayBegin() ? fromQImage(QImage(QString::fromStdString(resourcePath))) : nullptr;
}

std::string Image::pngData() const
{
    const QtWork work;
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    constexpr int fast = 80; // level 1 of zlib: a third of the time, a tenth larger
    if (!work.mayBegin() || !m_image.save(&buffer, "PNG", fast))
        return {};
    return data.toStdString();
}

std::string describe(const Image& image)
{
    return "<Image " + std::to_string(image.width()) + "x" + std::to_string(image.height()) + ">";
}

} // namespace virlo
