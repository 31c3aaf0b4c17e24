#pragma once

#include <QImage>

#include <memory>
#include <string>
#include <string_view>

namespace virlo
{

/// A decoded image: immutable, shared by pointer, made and used on any thread. Its pixels are in a format
/// that the scene graph takes without conversion (opaque 32 bits, or premultiplied 32 bits). One pixel is one
/// point.
class Image : public std::enable_shared_from_this<Image>
{
public:
    /// The most pixels that a decoded image may have; a file that claims more is refused before memory is
    /// allocated for it.
    static constexpr long long maximumPixels = 32LL << 20;

    /// Decodes PNG, JPEG, GIF (first frame), BMP or (where the device has the plug-in) WebP bytes, told apart
    /// by their content. Null for anything else, for what the decoder refuses and for more than
    /// `maximumPixels`; what the decoder makes of a file that is cut off is an image like any other.
    [[nodiscard]] static std::shared_ptr<const Image> decode(std::string_view bytes);
    /// As `decode`, at a reduced size where that is cheaper: each side at least that of the smallest image of
    /// this shape that covers `width` × `height`, and never larger than the original.
    [[nodiscard]] static std::shared_ptr<const Image> decodeCovering(std::string_view bytes, int width,
                                                                     int height);
    /// An image compiled into the program or library, by its resource path (":/…"); null where there is none.
    /// Each call decodes.
    [[nodiscard]] static std::shared_ptr<const Image> named(const std::string& resourcePath);
    /// From drawn pixels, converted where the format is another; null for an empty image.
    [[nodiscard]] static std::shared_ptr<const Image> fromQImage(QImage image);

    /// This image where it is no larger than needed to cover `width` × `height`, else a smoothly reduced copy
    /// that just covers it.
    [[nodiscard]] std::shared_ptr<const Image> covering(int width, int height) const;

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
