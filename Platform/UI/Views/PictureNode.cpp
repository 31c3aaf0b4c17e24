#include "PictureNode.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <private/qsgplaintexture_p.h>

#include <cmath>
#include <limits>
#include <utility>

namespace virlo
{

namespace
{

using Scales = std::pair<float, float>;

/// Two scales that take `scale` back, to more digits than one has. About one in eighty thousand pairs does.
Scales searchScalesAgainst(double scale)
{
    constexpr double tolerance = 5e-13;
    constexpr int mostTries = 4'000'000;
    float outer = 1;
    for (int count = 0; count < mostTries; ++count) {
        const auto inner = static_cast<float>(1 / (scale * outer));
        if (std::abs(scale * outer * inner - 1) < tolerance)
            return {outer, inner};
        outer = std::nextafter(outer, std::numeric_limits<float>::max());
    }
    return {1.0F, static_cast<float>(1 / scale)};
}

Scales scalesAgainst(double scale)
{
    // All of a window's views have the same.
    thread_local double last = 1;
    thread_local Scales found{1.0F, 1.0F};
    if (std::exchange(last, scale) != scale)
        found = searchScalesAgainst(scale);
    return found;
}

/// As the scene's nodes keep it, which is less exactly than the items do.
double sceneScaleOf(const QQuickItem& view)
{
    double scale = 1;
    for (const QQuickItem* item = &view; item != nullptr; item = item->parentItem())
        scale *= static_cast<float>(item->scale());
    return scale;
}

QMatrix4x4 scaled(float scale)
{
    QMatrix4x4 matrix;
    matrix.scale(scale, scale);
    return matrix;
}

} // namespace

PictureNode::PictureNode(QQuickWindow& window, bool hasAlpha)
    : m_inner(new QSGTransformNode)
    , m_image(window.createImageNode())
    , m_texture(new QSGPlainTexture)
{
    m_texture->setHasAlphaChannel(hasAlpha);
    m_texture->setFiltering(QSGTexture::Linear);
    m_image->setFiltering(QSGTexture::Linear);
    m_image->setOwnsTexture(true);
    m_inner->appendChildNode(m_image);
    appendChildNode(m_inner);
}

void PictureNode::setPicture(const QImage& picture)
{
    m_texture->setImage(picture);
    if (m_image->texture() == nullptr)
        m_image->setTexture(m_texture);
    m_image->setSourceRect(QRectF(picture.rect()));
    m_image->markDirty(QSGNode::DirtyMaterial);
}

void PictureNode::setScale(double sceneScale)
{
    if (sceneScale == m_sceneScale)
        return;
    m_sceneScale = sceneScale;
    const Scales scales = scalesAgainst(sceneScale);
    m_outerScale = scales.first;
    m_inner->setMatrix(scaled(scales.second));
}

void PictureNode::setPlace(const QRectF& rect, const QQuickItem& view)
{
    constexpr double sameSize = 0.01;
    const double sceneScale = sceneScaleOf(view);
    const double pixelRatio = view.window()->effectiveDevicePixelRatio();
    const QSizeF picture = m_image->sourceRect().size();
    const QSizeF pixels = rect.size() * sceneScale * pixelRatio;
    const bool fits = std::abs(pixels.width() - picture.width()) < sameSize &&
                      std::abs(pixels.height() - picture.height()) < sameSize;
    setScale(fits ? sceneScale : 1);
    QMatrix4x4 matrix;
    matrix.translate(static_cast<float>(rect.x()), static_cast<float>(rect.y()));
    matrix.scale(m_outerScale, m_outerScale);
    setMatrix(matrix);
    m_image->setRect(QRectF(QPointF(), fits ? picture / pixelRatio : rect.size()));
}

} // namespace virlo
