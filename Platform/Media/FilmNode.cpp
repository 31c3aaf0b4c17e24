#include "FilmNode.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <private/qsgplaintexture_p.h>

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace virlo
{

namespace
{

/// Two scales that take `scale` back, to more digits than one has. About one in eighty thousand pairs does.
std::optional<std::pair<float, float>> scalesAgainst(double scale)
{
    constexpr double tolerance = 5e-13;
    constexpr int mostTries = 4'000'000;
    float outer = 1;
    for (int count = 0; count < mostTries; ++count) {
        const auto inner = static_cast<float>(1 / (scale * outer));
        if (std::abs(scale * outer * inner - 1) < tolerance)
            return std::pair(outer, inner);
        outer = std::nextafter(outer, std::numeric_limits<float>::max());
    }
    return std::nullopt;
}

QMatrix4x4 scaled(float scale)
{
    QMatrix4x4 matrix;
    matrix.scale(scale, scale);
    return matrix;
}

} // namespace

FilmNode::FilmNode(QQuickWindow& window)
    : m_inner(new QSGTransformNode)
    , m_image(window.createImageNode())
    , m_texture(new QSGPlainTexture)
{
    m_texture->setHasAlphaChannel(false);
    m_texture->setFiltering(QSGTexture::Linear);
    m_image->setOwnsTexture(true);
    m_inner->appendChildNode(m_image);
    appendChildNode(m_inner);
}

void FilmNode::setPicture(const QImage& picture)
{
    m_texture->setImage(picture);
    if (m_image->texture() == nullptr)
        m_image->setTexture(m_texture);
    m_image->setSourceRect(QRectF(picture.rect()));
    m_image->markDirty(QSGNode::DirtyMaterial);
}

void FilmNode::setScale(double sceneScale)
{
    if (sceneScale == m_sceneScale)
        return;
    m_sceneScale = sceneScale;
    const auto scales = scalesAgainst(sceneScale).value_or(std::pair(1.0F, 1.0F));
    m_outerScale = scales.first;
    m_inner->setMatrix(scaled(scales.second));
}

void FilmNode::setPlace(const QRectF& rect, double sceneScale, double pixelRatio)
{
    constexpr double sameSize = 0.01;
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
    // Smoothing would change nothing in a picture that fits, and costs several times as much as the copy.
    m_image->setFiltering(fits ? QSGTexture::Nearest : QSGTexture::Linear);
}

} // namespace virlo
