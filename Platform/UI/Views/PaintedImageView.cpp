#include "PaintedImageView.h"

#include "Image.h"

#include <QPainter>

#include <utility>

namespace virlo
{

PaintedImageView::PaintedImageView(QQuickItem* superview) : PaintedView(superview) {}

PaintedImageView::~PaintedImageView() = default;

void PaintedImageView::setImage(std::shared_ptr<const Image> image)
{
    m_image = std::move(image);
    setNeedsDisplay();
}

void PaintedImageView::paint(QPainter& painter)
{
    if (m_image)
        painter.drawImage(bounds(), m_image->qImage());
}

} // namespace virlo
