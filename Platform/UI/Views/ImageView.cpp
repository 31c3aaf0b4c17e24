#include "ImageView.h"

#include "Image.h"
#include "RoundedImageNode.h"

#include <QQuickWindow>

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

struct Placement {
    QRectF source;
    QRectF target;
};

Placement place(QSizeF image, QSizeF view, ImageView::ContentMode mode)
{
    const QRectF whole(QPointF(), image);
    const QRectF bounds(QPointF(), view);
    QSizeF size = view;
    if (mode == ImageView::ContentMode::AspectFit)
        size = image.scaled(view, Qt::KeepAspectRatio);
    else if (mode == ImageView::ContentMode::AspectFill)
        size = image.scaled(view, Qt::KeepAspectRatioByExpanding);
    else if (mode == ImageView::ContentMode::Center)
        size = image;
    QRectF target(QPointF(), size);
    target.moveCenter(bounds.center());
    // An image at its own size stays on whole points, and so sharp.
    if (size == image)
        target.moveTopLeft(QPointF(std::floor(target.x()), std::floor(target.y())));
    const QRectF visible = target.intersected(bounds);
    const double x = image.width() / size.width();
    const double y = image.height() / size.height();
    const QRectF source((visible.x() - target.x()) * x, (visible.y() - target.y()) * y, visible.width() * x,
                        visible.height() * y);
    return {source.intersected(whole), visible};
}

} // namespace

ImageView::ImageView(QQuickItem* superview) : View(superview) {}

ImageView::~ImageView() = default;

void ImageView::setImage(std::shared_ptr<const Image> image)
{
    if (image == m_image)
        return;
    m_image = std::move(image);
    m_textureIsStale = true;
    update();
    emit imageChanged();
}

void ImageView::setContentMode(ContentMode mode)
{
    if (std::exchange(m_mode, mode) == mode)
        return;
    update();
    emit contentModeChanged();
}

QSGNode* ImageView::updateContentNode(QSGNode* old)
{
    auto* node = static_cast<RoundedImageNode*>(old);
    if (!m_image || size().isEmpty()) {
        delete node;
        return nullptr;
    }
    const bool isNew = node == nullptr;
    if (isNew)
        node = new RoundedImageNode;
    if (std::exchange(m_textureIsStale, false) || isNew)
        node->setImage(m_image->qImage(), *window());
    const Placement placement = place(QSizeF(m_image->qImage().size()), size(), m_mode);
    // The corners are the view's: an image that leaves room beside it reaches into none of them.
    const bool fills = placement.target.size() == size();
    node->place(placement.target, placement.source, fills && m_roundsImage ? cornerRadius() : 0, *window());
    return node;
}

} // namespace virlo
