#include "PlayerLayerView.h"

#include "QueuePlayer.h"

#include <QImage>
#include <QQuickWindow>
#include <QSGImageNode>
#include <private/qsgplaintexture_p.h>

#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

/// The picture itself, not a copy; it is kept as long as the image or a copy of it is.
QImage imageOf(std::shared_ptr<const VideoFrame> frame)
{
    const VideoFrame& picture = *frame;
    using Holder = std::shared_ptr<const VideoFrame>;
    auto* const holder = new Holder(std::move(frame));
    return {picture.bits,
            picture.width,
            picture.height,
            picture.bytesPerLine,
            QImage::Format_RGB32,
            [](void* kept) { delete static_cast<Holder*>(kept); },
            holder};
}

/// A picture that fills its pixels one by one is copied. Smoothing would change nothing in it and costs the
/// software backend several times as much as the copy.
QSGTexture::Filtering filteringFor(const QSizeF& pixels, const QSize& picture)
{
    constexpr double sameSize = 0.01;
    const bool fits = std::abs(pixels.width() - picture.width()) < sameSize &&
                      std::abs(pixels.height() - picture.height()) < sameSize;
    return fits ? QSGTexture::Nearest : QSGTexture::Linear;
}

/// Belongs to its node, as the node's texture.
QSGPlainTexture* makeTexture()
{
    auto* const texture = new QSGPlainTexture;
    texture->setHasAlphaChannel(false);
    texture->setFiltering(QSGTexture::Linear);
    return texture;
}

} // namespace

PlayerLayerView::PlayerLayerView(QQuickItem* superview) : View(superview) {}

PlayerLayerView::~PlayerLayerView() = default;

void PlayerLayerView::setPlayer(std::shared_ptr<QueuePlayer> player)
{
    if (player == m_player)
        return;
    m_player = std::move(player);
    m_frameObserver.reset();
    m_aspectRatio = 0;
    m_hasNewFrame = m_player != nullptr;
    if (m_player) {
        m_frameObserver = m_player->addFrameObserver([this] {
            m_hasNewFrame = true;
            update();
        });
    }
    update();
}

QRectF PlayerLayerView::videoRect() const
{
    if (m_aspectRatio <= 0 || size().isEmpty())
        return {};
    QRectF rect(QPointF(), QSizeF(m_aspectRatio, 1).scaled(size(), Qt::KeepAspectRatio));
    rect.moveCenter(boundingRect().center());
    return rect;
}

QSGNode* PlayerLayerView::updateContentNode(QSGNode* old)
{
    auto* node = static_cast<QSGImageNode*>(old);
    // A window that comes and goes takes the nodes with it.
    const bool isWanted = std::exchange(m_hasNewFrame, false) || node == nullptr;
    const auto frame = isWanted && m_player ? m_player->takeFrame() : nullptr;
    if (frame)
        m_aspectRatio = frame->aspectRatio;
    if (m_aspectRatio <= 0 || (node == nullptr && !frame)) {
        delete node;
        return nullptr;
    }
    if (node == nullptr) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
    }
    if (frame) {
        auto* texture = static_cast<QSGPlainTexture*>(node->texture());
        const bool isNew = texture == nullptr;
        if (isNew)
            texture = makeTexture();
        texture->setImage(imageOf(frame));
        if (isNew)
            node->setTexture(texture);
        node->setSourceRect(QRectF(0, 0, frame->width, frame->height));
        node->markDirty(QSGNode::DirtyMaterial);
    }
    const QRectF rect = videoRect();
    node->setRect(rect);
    const QSizeF pixels = mapRectToScene(rect).size() * window()->effectiveDevicePixelRatio();
    node->setFiltering(filteringFor(pixels, node->sourceRect().size().toSize()));
    return node;
}

} // namespace virlo
