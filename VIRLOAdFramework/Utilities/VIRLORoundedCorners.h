#pragma once

#include <memory>

namespace virlo
{
class Image;
}

/// Thumbnails. Any thread.
namespace VIRLORoundedCorners
{
inline constexpr double thumbnailSide = 150; ///< in points
inline constexpr double cornerRadius = 30;

/// The side of a thumbnail in the window's pixels.
[[nodiscard]] int thumbnailPixels();
/// 150 × 150 points in the window's pixels: the middle of the image, scaled to fill, with rounded corners on
/// a transparent background. Null once the process ends.
[[nodiscard]] std::shared_ptr<const virlo::Image>
VIRLO_thumbnailWithRoundedCorners(const virlo::Image& image);
} // namespace VIRLORoundedCorners
