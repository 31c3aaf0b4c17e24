#pragma once

#include <memory>

namespace virlo
{
class Image;
}

/// Thumbnails. Any thread.
namespace VIRLORoundedCorners
{
inline constexpr int thumbnailSide = 150;
inline constexpr int cornerRadius = 30;

/// 150 × 150 points: the picture's middle, scaled to fill, with round corners on a clear ground.
/// Nothing once the process ends.
[[nodiscard]] std::shared_ptr<const virlo::Image>
VIRLO_thumbnailWithRoundedCorners(const virlo::Image& image);
} // namespace VIRLORoundedCorners
