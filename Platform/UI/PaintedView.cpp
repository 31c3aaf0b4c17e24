#include "PaintedView.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

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
        const double scale = resolution();
        const QSize pixels(static_cast<int>(std::ceil(width() * scale)),
                           static_cast<int>(std::ceil(height() * scale)));
        if (m_picture.size() != pixels || !m_picture.isDetached())
            m_picture = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_picture.fill(Qt::transparent);
        QPainter painter(&m_picture);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                               QPainter::TextAntialiasing);
        painter.scale(pixels.width() / width(), pixels.height() / height());
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
    auto* node = static_cast<QSGImageNode*>(old);
    if (m_picture.isNull()) {
        delete node;
        return nullptr;
    }
    if (node == nullptr || m_textureIsStale) {
        QSGTexture* texture =
            window()->createTextureFromImage(m_picture, QQuickWindow::TextureHasAlphaChannel);
        if (node == nullptr) {
            node = window()->createImageNode();
            node->setOwnsTexture(true);
            node->setFiltering(QSGTexture::Linear);
        }
        node->setTexture(texture);
        m_textureIsStale = false;
    }
    node->setSourceRect(QRectF(QPointF(), QSizeF(m_picture.size())));
    node->setRect(boundingRect());
    return node;
}

} // namespace virlo
