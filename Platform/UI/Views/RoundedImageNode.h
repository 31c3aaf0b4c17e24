#pragma once

#include <QImage>
#include <QRectF>
#include <QSGImageNode>
#include <QSGNode>
#include <QSGTexture>

#include <array>
#include <memory>
#include <vector>

class QQuickWindow;

namespace virlo
{

/// Draws a part of an image into a rectangle with round corners, the same on every backend: the image in
/// strips that leave the corners out, and the corners from small images of their own, drawn anew only when
/// the image, its part or the size of the rectangle changes. Render thread.
class RoundedImageNode : public QSGTransformNode
{
public:
    ~RoundedImageNode() override;

    void setImage(const QImage& image, QQuickWindow& window);
    /// `source` in the image's pixels. Radius 0 for square corners.
    void place(const QRectF& target, const QRectF& source, double radius, QQuickWindow& window);

private:
    void makeStrips(std::size_t count, QQuickWindow& window);
    void removeCorners();
    void drawCorners(QQuickWindow& window);
    [[nodiscard]] QImage corner(const QRectF& place) const;

    struct Corner {
        QSGImageNode* node = nullptr;
        std::unique_ptr<QSGTexture> texture;
    };

    QImage m_image;
    std::unique_ptr<QSGTexture> m_texture;
    std::vector<QSGImageNode*> m_strips;
    std::array<Corner, 4> m_corners;
    QRectF m_target;
    QRectF m_source;
    double m_radius = 0;
    bool m_imageIsNew = true;
};

} // namespace virlo
