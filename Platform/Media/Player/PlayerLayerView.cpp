#include "PlayerLayerView.h"

#include "ImageNode.h"
#include "QueuePlayer.h"

#include <QImage>
#include <QQuickWindow>

#include <utility>

namespace virlo
{

namespace
{

/// The frame itself, not a copy; it is kept as long as the image or a copy of it exists.
QImage imageOf(std::shared_ptr<const VideoFrame> frame)
{
    const VideoFrame& video = *frame;
    using Holder = std::shared_ptr<const VideoFrame>;
    auto* const holder = new Holder(std::move(frame));
    return {video.bits,
            video.width,
            video.height,
            video.bytesPerLine,
            QImage::Format_RGB32,
            [](void* kept) { delete static_cast<Holder*>(kept); },
            holder};
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
    auto* node = static_cast<ImageNode*>(old);
    // Another window needs another node, and for that the last frame again.
    const bool isWanted = std::exchange(m_hasNewFrame, false) || node == nullptr;
    const auto frame = isWanted && m_player ? m_player->takeFrame() : nullptr;
    if (frame)
        m_aspectRatio = frame->aspectRatio;
    if (m_aspectRatio <= 0 || (node == nullptr && !frame)) {
        delete node;
        return nullptr;
    }
    if (node == nullptr)
        node = new ImageNode(*window());
    if (frame)
        node->setImage(imageOf(frame));
    node->setRect(videoRect());
    return node;
}

} // namespace virlo
