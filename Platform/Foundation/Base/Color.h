#pragma once

namespace virlo
{

/// Red, green, blue and alpha, each 0 to 1 where nothing else is said; not clamped.
struct Color {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    friend bool operator==(const Color&, const Color&) = default;
};

} // namespace virlo
