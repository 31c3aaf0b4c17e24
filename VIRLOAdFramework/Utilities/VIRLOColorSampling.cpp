#include "VIRLOColorSampling.h"

#include "Image.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace
{

/// Byte `index` of the image's bitmap: rows of red, green, blue and alpha, premultiplied.
std::uint8_t byteAt(const QImage& pixels, std::size_t index)
{
    const auto pixel = static_cast<int>(index / 4 % static_cast<std::size_t>(pixels.width()));
    const auto row = static_cast<int>(index / 4 / static_cast<std::size_t>(pixels.width()));
    const QRgb color = reinterpret_cast<const QRgb*>(pixels.constScanLine(row))[pixel];
    switch (index % 4) {
    case 0:
        return static_cast<std::uint8_t>(qRed(color));
    case 1:
        return static_cast<std::uint8_t>(qGreen(color));
    case 2:
        return static_cast<std::uint8_t>(qBlue(color));
    default:
        return pixels.hasAlphaChannel() ? static_cast<std::uint8_t>(qAlpha(color)) : 255;
    }
}

} // namespace

virlo::Color VIRLOColorSampling::colorAtPoint(const virlo::Image& image, double x, double y)
{
    constexpr virlo::Color clear{0, 0, 0, 0};
    const QImage& pixels = image.qImage();
    const double width = pixels.width();
    const double index = x * 4 + (width * 4) * y;
    if (!(index >= 0) || index > width * 4 * pixels.height() - 4)
        return clear;

    std::array<float, 4> components{};
    for (std::size_t i = 0; i < components.size(); ++i)
        components[i] = static_cast<float>(byteAt(pixels, static_cast<std::size_t>(index) + i));
    const float alpha = components[3] / 255.0F;
    if (alpha == 0)
        return clear;
    return {components[0] / alpha / 255.0F, components[1] / alpha / 255.0F, components[2] / alpha / 255.0F,
            alpha};
}
