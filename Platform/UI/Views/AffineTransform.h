#pragma once

namespace virlo
{

/// A two-dimensional affine transform: (x, y) becomes (a x + c y + tx, b x + d y + ty).
struct AffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;

    [[nodiscard]] static constexpr AffineTransform scale(double x, double y) { return {x, 0, 0, y, 0, 0}; }

    [[nodiscard]] static constexpr AffineTransform translation(double x, double y)
    {
        return {1, 0, 0, 1, x, y};
    }

    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

} // namespace virlo
