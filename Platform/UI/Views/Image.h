#pragma once

#include <QImage>

#include <memory>
#include <string>
#include <string_view>

namespace virlo
{

/// A decoded picture: immutable, shared by pointer, made and used on any thread. Its pixels are in a format
/// that the scene graph takes without conversion (opaque 32 bits, or premultiplied 32 bits). One pixel is one
/// point.
class Image
{
public:
    /// The most pixels that a decoded picture may have; what claims more is refused before memory is taken
    /// for it.
    static constexpr long long maximumPixels = 32LL << 20;

    /// Decodes PNG, JPEG, GIF (first frame), BMP or (where the device has the plug-in) WebP bytes, told by
    /// their content; nothing for anything else, for a damaged or cut-off file and for one with more than
    /// `maximumPixels`.
    [[nodiscard]] static std::shared_ptr<const Image> decode(std::string_view bytes);
    /// As `decode`, at a reduced size where that is cheaper: each side at least that of the smallest picture
    /// of this shape that covers `width` × `height`, and never larger than the original.
    [[nodiscard]] static std::shared_ptr<const Image> decodeCovering(std::string_view bytes, int width,
                                                                     int height);
    /// A picture compiled into the program or library, by its resource path (":/…"); nothing where there is
    /// none. Kept by nobody: each call decodes.
    [[nodiscard]] static std::shared_ptr<const Image> named(const std::string& resourcePath);
    /// From drawn pixels, converted where the format is another; nothing for an empty picture.
    [[nodiscard]] static std::shared_ptr<const Image> fromQImage(QImage image);

    [[nodiscard]] int width() const noexcept { return m_image.width(); }

    [[nodiscard]] int height() const noexcept { return m_image.height(); }

    [[nodiscard]] const QImage& qImage() const noexcept { return m_image; }

    /// Empty where encoding fails.
    [[nodiscard]] std::string pngData() const;

private:
    explicit Image(QImage image);

    QImage m_image;
};

/// One line for the log: `<Image 1920x1080>`.
[[nodiscard]] std::string describe(const Image& image);

} // namespace virlo
