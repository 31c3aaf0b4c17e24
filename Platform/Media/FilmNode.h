#pragma once

#include <QImage>
#include <QRectF>
#include <QSGTransformNode>

class QQuickWindow;
class QSGImageNode;
class QSGPlainTexture;

namespace virlo
{

/// A film's picture in the scene; each next one comes in the same texture.
///
/// The software renderer copies a picture, which is fast, only where the whole transform of its place is one
/// to twelve digits; otherwise it scales it, by however little. Under a scaled view that takes a scale of its
/// own, and since a node's is kept to seven digits, two of them.
class FilmNode : public QSGTransformNode
{
public:
    explicit FilmNode(QQuickWindow& window);

    void setPicture(const QImage& picture);
    /// `sceneScale` is what the scene's items above make of a point together.
    void setPlace(const QRectF& rect, double sceneScale, double pixelRatio);

private:
    void setScale(double sceneScale);

    QSGTransformNode* m_inner;
    QSGImageNode* m_image;
    QSGPlainTexture* m_texture;
    double m_sceneScale = 1;
    float m_outerScale = 1;
};

} // namespace virlo
