#include "PaintedView.h"

#include "ImageNode.h"

#include <QPainter>
#include <QQuickWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace virlo
{

PaintedView::PaintedView(QQuickItem* superview) : View(superview) {}

PaintedView::~PaintedView() = default;

void PaintedView::setNeedsDisplay()
{
    polish();
}

double PaintedView::resolution() const
{
    if (window() == nullptr)
        return 1;
    double scale = window()->effectiveDevicePixelRatio();
    for (const QQuickItem* item = this; item != nullptr; item = item->parentItem())
        scale *= item->scale();
    return std::clamp(scale, 0.25, 4.0);
}

void PaintedView::updatePolish()
{
    if (window() == nullptr || size().isEmpty()) {
        m_drawing = {};
    } else {
        const double scale = m_resolution = resolution();
        const QSize pixels(static_cast<int>(std::ceil(width() * scale)),
                           static_cast<int>(std::ceil(height() * scale)));
        if (m_drawing.size() != pixels || !m_drawing.isDetached())
            m_drawing = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_drawing.fill(Qt::transparent);
        QPainter painter(&m_drawing);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                               QPainter::TextAntialiasing);
        painter.scale(scale, scale);
        paint(painter);
    }
    m_drawingIsNew = true;
    update();
}

void PaintedView::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    if (now.size() != before.size())
        polish();
}

void PaintedView::itemChange(ItemChange change, const ItemChangeData& data)
{
    View::itemChange(change, data);
    if (change == ItemSceneChange || change == ItemParentHasChanged ||
        change == ItemDevicePixelRatioHasChanged)
        polish();
}

QSGNode* PaintedView::updateContentNode(QSGNode* old)
{
    auto* node = static_cast<ImageNode*>(old);
    if (m_drawing.isNull()) {
        delete node;
        return nullptr;
    }
    const bool isNew = node == nullptr;
    if (isNew)
        node = new ImageNode(*window());
    if (std::exchange(m_drawingIsNew, false) || isNew)
        node->setImage(m_drawing);
    // In whole pixels: up to one more than the view's size.
    node->setRect(QRectF(QPointF(), QSizeF(m_drawing.size()) / m_resolution));
    return node;
}

} // namespace virlo
