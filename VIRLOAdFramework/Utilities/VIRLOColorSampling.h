#pragma once

#include "Color.h"

namespace virlo
{
class Image;
}

/// Colours in a picture. Any thread.
namespace VIRLOColorSampling
{
/// The colour at a point in the picture's own pixels, not premultiplied. The point is one place in the row of
/// all bytes: beyond a row's end it falls into the next row, and a fraction of a pixel shifts the components.
/// Before the first and after the last pixel, and where the picture is transparent, it is clear black.
[[nodiscard]] virlo::Color colorAtPoint(const virlo::Image& image, double x, double y);
} // namespace VIRLOColorSampling
