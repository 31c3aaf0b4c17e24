#pragma once

#include <QImage>
#include <QRectF>
#include <QSGTransformNode>

class QQuickItem;
class QQuickWindow;
class QSGImageNode;
class QSGPlainTexture;

namespace virlo
{

/// A picture in the scene that is made for the screen's pixels; each next one comes in the same texture.
///
/// The software renderer copies or blends a picture, which is fast and exact, only where the whole transform
/// of its place is one to twelve digits; otherwise it scales it, by however little. Under a scaled view that
/// takes a scale of its own, and since a node's is kept to seven digits, two of them.
class PictureNode : public QSGTransformNode
{
public:
    PictureNode(QQuickWindow& window, bool hasAlpha);

    void setPicture(const QImage& picture);
    /// Where it stands in `view`. Fits where that takes as many pixels as the picture has, but for views'
    /// own transforms.
    void setPlace(const QRectF& rect, const QQuickItem& view);

private:
    void setScale(double sceneScale);

    QSGTransformNode* m_inner;
    QSGImageNode* m_image;
    QSGPlainTexture* m_texture;
    double m_sceneScale = 1;
    float m_outerScale = 1;
};

} // namespace virlo
