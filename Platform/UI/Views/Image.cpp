#include "Image.h"

#include "PictureMemory.h"
#include "QtWork.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>

namespace virlo
{

namespace
{

constexpr int maximumSide = 32767;

/// A cut-off JPEG decodes without an error, grey where the rest is missing: only its end mark tells that it
/// is whole.
bool isWholeJpeg(std::string_view bytes)
{
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(bytes[at]); };
    std::size_t at = 2;
    while ((at = bytes.find('\xFF', at)) < bytes.size() && at + 1 < bytes.size()) {
        const std::uint8_t mark = byte(at + 1);
        if (mark == 0xD9)
            return true;
        const bool standsAlone =
            mark == 0x00 || mark == 0x01 || mark == 0xFF || (mark >= 0xD0 && mark <= 0xD8);
        if (standsAlone) {
            at += mark == 0xFF ? 1 : 2;
            continue;
        }
        if (at + 3 >= bytes.size())
            return false;
        at += 2 + (std::size_t{byte(at + 2)} << 8 | byte(at + 3));
    }
    return false;
}

/// As for JPEG; the size of the file stands in its head, or 0.
bool isWholeBitmap(std::string_view bytes)
{
    std::size_t size = 0;
    for (std::size_t at = 5; at >= 2; --at)
        size = size << 8 | (at < bytes.size() ? static_cast<std::uint8_t>(bytes[at]) : 0xFFU);
    return size <= bytes.size();
}

/// A picture over memory of its own. Null where there is none. 32 bits a pixel.
QImage mappedImage(QSize size, QImage::Format format)
{
    const qsizetype bytesPerLine = qsizetype{size.width()} * 4;
    const auto block = PictureMemory::take(static_cast<std::size_t>(bytesPerLine * size.height()));
    if (block.address == nullptr)
        return {};
    const auto release = [](void* info) {
        const std::unique_ptr<PictureMemory::Block> taken(static_cast<PictureMemory::Block*>(info));
        PictureMemory::giveBack(*taken);
    };
    return {static_cast<uchar*>(block.address), size.width(), size.height(), bytesPerLine, format, release,
            new PictureMemory::Block(block)};
}

bool isWorthMapping(QSize size)
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

/// `target` is empty for the picture's own size.
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
    // Other formats that a device has plug-ins for are no ad pictures, and some (SVG) read files.
    constexpr std::array formats{"png", "jpeg", "gif", "bmp", "webp"};
    if (std::find(formats.begin(), formats.end(), format) == formats.end())
        return {};
    if ((format == "jpeg" && !isWholeJpeg(bytes)) || (format == "bmp" && !isWholeBitmap(bytes)))
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

    // Qt decodes into the picture that it is given where size and format are right.
    const QImage::Format decoded = reader.imageFormat();
    QImage image;
    if (isWorthMapping(wanted) && (decoded == QImage::Format_RGB32 || decoded == QImage::Format_ARGB32))
        image = mappedImage(wanted, decoded);
    const uchar* const mapped = image.constBits();
    if (!reader.read(&image))
        return {};
    if (image.format() == QImage::Format_ARGB32)
        premultiplyInPlace(image);
    else
        image = inSceneFormat(std::move(image));
    if (image.constBits() == mapped || !isWorthMapping(image.size()))
        return image;
    QImage copy = mappedImage(image.size(), image.format());
    if (copy.isNull())
        return image;
    for (int y = 0; y < image.height(); ++y)
        std::copy_n(image.constScanLine(y), copy.bytesPerLine(), copy.scanLine(y));
    return copy;
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
    if (!work.mayBegin() || !m_image.save(&buffer, "PNG"))
        return {};
    return data.toStdString();
}

std::string describe(const Image& image)
{
    return "<Image " + std::to_string(image.width()) + "x" + std::to_string(image.height()) + ">";
}

} // namespace virlo
