#pragma once

#include <QImage>
#include <QRectF>
#include <QSGTransformNode>

class QQuickWindow;
class QSGImageNode;

namespace virlo
{

/// An image in the scene, stretched over a rectangle of its view. Render thread, as every node.
///
/// On the software backend it paints by itself: Qt's own image node scales each frame under a scaled canvas,
/// also where the image has exactly the window's pixels (5 ms in place of 1 for 1280 × 720).
class ImageNode : public QSGTransformNode
{
public:
    explicit ImageNode(QQuickWindow& window);

    void setImage(const QImage& image);
    void setRect(const QRectF& rect);

private:
    class Painted;

    QQuickWindow& m_window;
    Painted* m_painted = nullptr;       ///< on the software backend
    QSGImageNode* m_textured = nullptr; ///< on the others
};

} // namespace virlo
