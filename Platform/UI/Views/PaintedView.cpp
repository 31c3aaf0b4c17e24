#include "PaintedView.h"

#include "PictureNode.h"

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
        m_picture = {};
    } else {
        const double scale = m_resolution = resolution();
        const QSize pixels(static_cast<int>(std::ceil(width() * scale)),
                           static_cast<int>(std::ceil(height() * scale)));
        if (m_picture.size() != pixels || !m_picture.isDetached())
            m_picture = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_picture.fill(Qt::transparent);
        QPainter painter(&m_picture);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                               QPainter::TextAntialiasing);
        painter.scale(scale, scale);
        paint(painter);
    }
    m_textureIsStale = true;
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
    auto* node = static_cast<PictureNode*>(old);
    if (m_picture.isNull()) {
        delete node;
        return nullptr;
    }
    const bool isNew = node == nullptr;
    if (isNew)
        node = new PictureNode(*window(), true);
    if (std::exchange(m_textureIsStale, false) || isNew)
        node->setPicture(m_picture);
    // Of whole pixels: up to one more than the view.
    node->setPlace(QRectF(QPointF(), QSizeF(m_picture.size()) / m_resolution), *this);
    return node;
}

} // namespace virlo
