#pragma once

#include "Color.h"

#include <memory>
#include <string>

namespace virlo
{
class Image;
}

/// The images in the framework's bundle. Any thread.
namespace VIRLOFrameworkImages
{
/// Null where there is none of that name. Decoded at first use and then kept: they are few and small.
[[nodiscard]] std::shared_ptr<const virlo::Image> imageNamed(const std::string& name);
/// The shape of an image in another colour; not kept.
[[nodiscard]] std::shared_ptr<const virlo::Image> imageNamedInColor(const std::string& name,
                                                                    const virlo::Color& color);
/// Decodes them all in the background.
void warmUp();
} // namespace VIRLOFrameworkImages
