#pragma once

#include <QColor>
#include <QImage>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGNode>
#include <QSGTexture>

#include <memory>
#include <vector>

namespace virlo
{

/// A filled rectangle with round corners, sharp or blurred.
struct RoundedShape {
    QSizeF size;
    QRgb color = 0; ///< opaque or not
    double corner = 0;
    double blur = 0; ///< the standard deviation of the blur, in points

    friend bool operator==(const RoundedShape&, const RoundedShape&) = default;
};

/// Draws a RoundedShape as a small image stretched between its corners (nine-patch): smooth under scale on
/// every backend, whatever the size. One that is hardly larger than that image is drawn whole, which software
/// rendering copies several times as fast. The blur extends outside the shape. Patches of one shape share its
/// image: the shadows of the cells of a grid. Render thread.
class RoundedPatch : public QSGTransformNode
{
public:
    ~RoundedPatch() override;

    /// Places the shape with its top left corner at `origin`.
    void update(const RoundedShape& shape, QPointF origin, QQuickWindow& window);

private:
    struct Patch {
        QImage image;
        double outset = 0; ///< how far it extends outside the shape
        double inset = 0;  ///< the part of each edge that must not be stretched; 0 where nothing is
    };

    [[nodiscard]] static Patch draw(const RoundedShape& shape);
    /// What another patch of this shape has drawn, or drawn now.
    [[nodiscard]] static std::shared_ptr<const Patch> patchOf(const RoundedShape& shape);
    void makePieces(int count, QQuickWindow& window);
    void place(const RoundedShape& shape, QPointF origin);

    RoundedShape m_shape;
    QPointF m_origin;
    std::shared_ptr<const Patch> m_patch;
    std::unique_ptr<QSGTexture> m_texture;
    std::vector<QSGImageNode*> m_pieces;
};

} // namespace virlo
