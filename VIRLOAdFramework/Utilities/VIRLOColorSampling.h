#pragma once

#include "Color.h"

namespace virlo
{
class Image;
}

/// Colours in an image. Any thread.
namespace VIRLOColorSampling
{
/// The colour at a point in the image's own pixels, not premultiplied. The point is an offset into the bytes
/// of all rows: beyond a row's end it falls into the next row, and a fraction of a pixel shifts the
/// components. Before the first and after the last pixel, and where the image is transparent, it is
/// transparent black.
[[nodiscard]] virlo::Color colorAtPoint(const virlo::Image& image, double x, double y);
} // namespace VIRLOColorSampling
