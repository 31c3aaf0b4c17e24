#include "RoundedImageNode.h"

#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>

#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

QQuickWindow::CreateTextureOption optionFor(const QImage& image)
{
    return image.hasAlphaChannel() ? QQuickWindow::TextureHasAlphaChannel : QQuickWindow::TextureIsOpaque;
}

} // namespace

RoundedImageNode::~RoundedImageNode() = default;

void RoundedImageNode::setImage(const QImage& image, QQuickWindow& window)
{
    m_image = image;
    m_imageIsNew = true;
    // The strips point to the old texture until they have the new one.
    const std::unique_ptr<QSGTexture> before = std::move(m_texture);
    m_texture.reset(window.createTextureFromImage(image, optionFor(image)));
    if (!m_texture)
        makeStrips(0, window);
    for (QSGImageNode* strip : m_strips)
        strip->setTexture(m_texture.get());
}

void RoundedImageNode::makeStrips(std::size_t count, QQuickWindow& window)
{
    while (m_strips.size() > count) {
        delete m_strips.back();
        m_strips.pop_back();
    }
    while (m_strips.size() < count) {
        QSGImageNode* strip = window.createImageNode();
        strip->setTexture(m_texture.get());
        strip->setOwnsTexture(false);
        strip->setFiltering(QSGTexture::Linear);
        appendChildNode(strip);
        m_strips.push_back(strip);
    }
}

void RoundedImageNode::place(const QRectF& target, const QRectF& source, double radius, QQuickWindow& window)
{
    radius = std::min({radius, target.width() / 2, target.height() / 2});
    if (!m_texture || (!std::exchange(m_imageIsNew, false) && target == m_target && source == m_source &&
                       radius == m_radius))
        return;
    m_target = target;
    m_source = source;
    m_radius = radius;
    const auto show = [&](std::size_t strip, const QRectF& rect) {
        const double x = source.width() / target.width();
        const double y = source.height() / target.height();
        m_strips[strip]->setRect(rect);
        m_strips[strip]->setSourceRect({source.x() + (rect.x() - target.x()) * x,
                                        source.y() + (rect.y() - target.y()) * y, rect.width() * x,
                                        rect.height() * y});
    };
    if (radius <= 0) {
        removeCorners();
        makeStrips(1, window);
        show(0, target);
        return;
    }
    makeStrips(3, window);
    show(0, target.adjusted(radius, 0, -radius, radius - target.height()));
    show(1, target.adjusted(0, radius, 0, -radius));
    show(2, target.adjusted(radius, target.height() - radius, -radius, 0));
    drawCorners(window);
}

void RoundedImageNode::removeCorners()
{
    for (Corner& corner : m_corners) {
        delete std::exchange(corner.node, nullptr);
        corner.texture.reset();
    }
}

void RoundedImageNode::drawCorners(QQuickWindow& window)
{
    for (std::size_t i = 0; i < m_corners.size(); ++i) {
        const QRectF place(i % 2 == 0 ? m_target.left() : m_target.right() - m_radius,
                           i < 2 ? m_target.top() : m_target.bottom() - m_radius, m_radius, m_radius);
        const QImage image = corner(place);
        Corner& one = m_corners[i];
        const std::unique_ptr<QSGTexture> before = std::move(one.texture);
        one.texture.reset(window.createTextureFromImage(image, QQuickWindow::TextureHasAlphaChannel));
        const bool isNew = one.node == nullptr;
        if (isNew) {
            one.node = window.createImageNode();
            one.node->setOwnsTexture(false);
            one.node->setFiltering(QSGTexture::Linear);
        }
        one.node->setTexture(one.texture.get());
        one.node->setRect(place);
        one.node->setSourceRect(QRectF(QPointF(), image.size()));
        // Last: the software renderer reads the texture of a node that joins a scene.
        if (isNew)
            appendChildNode(one.node);
    }
}

QImage RoundedImageNode::corner(const QRectF& place) const
{
    constexpr double pixelsPerPoint = 2; // sharp enough on every screen, and small
    const int side = static_cast<int>(std::ceil(m_radius * pixelsPerPoint));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(side / m_radius, side / m_radius);
    painter.translate(-place.topLeft());
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(m_target, m_radius, m_radius);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.drawImage(m_target, m_image, m_source);
    return image;
}

} // namespace virlo
