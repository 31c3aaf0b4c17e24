#include "ImageNode.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRenderNode>
#include <QSGRendererInterface>

#include <cmath>

namespace virlo
{

class ImageNode::Painted : public QSGRenderNode
{
public:
    explicit Painted(QQuickWindow& window) : m_window(window) {}

    void setImage(const QImage& image)
    {
        m_image = image;
        markDirty(DirtyMaterial);
    }

    void setRect(const QRectF& rect)
    {
        if (m_rect == rect)
            return;
        m_rect = rect;
        markDirty(DirtyGeometry);
    }

    void render(const RenderState* state) override
    {
        auto* const painter = static_cast<QPainter*>(
            m_window.rendererInterface()->getResource(&m_window, QSGRendererInterface::PainterResource));
        if (painter == nullptr || m_image.isNull())
            return;
        painter->setClipRegion(*state->clipRegion(), Qt::IntersectClip);
        painter->setOpacity(inheritedOpacity());
        const QTransform place = matrix()->toTransform();
        const QRectF target = place.mapRect(m_rect);
        if (place.type() <= QTransform::TxScale && fits(target.size())) {
            painter->setTransform(QTransform());
            painter->drawImage(target.topLeft().toPoint(), m_image);
            return;
        }
        painter->setTransform(place);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(m_rect, m_image);
    }

    [[nodiscard]] RenderingFlags flags() const override
    {
        const RenderingFlags bounded = BoundedRectRendering;
        return m_image.hasAlphaChannel() ? bounded : bounded | OpaqueRendering;
    }

    [[nodiscard]] QRectF rect() const override { return m_rect; }

private:
    /// Whether the image has the pixels of a rectangle of that size in the window.
    [[nodiscard]] bool fits(QSizeF size) const
    {
        constexpr double tolerance = 0.01;
        return m_window.effectiveDevicePixelRatio() == 1 &&
               std::abs(size.width() - m_image.width()) < tolerance &&
               std::abs(size.height() - m_image.height()) < tolerance;
    }

    QQuickWindow& m_window;
    QImage m_image;
    QRectF m_rect;
};

ImageNode::ImageNode(QQuickWindow& window) : m_window(window)
{
    if (window.rendererInterface()->graphicsApi() == QSGRendererInterface::Software)
        appendChildNode(m_painted = new Painted(window));
}

void ImageNode::setImage(const QImage& image)
{
    if (m_painted != nullptr) {
        m_painted->setImage(image);
        return;
    }
    const auto options =
        image.hasAlphaChannel() ? QQuickWindow::TextureHasAlphaChannel : QQuickWindow::TextureIsOpaque;
    QSGTexture* const texture = m_window.createTextureFromImage(image, options);
    if (texture == nullptr)
        return;
    if (m_textured == nullptr) {
        m_textured = m_window.createImageNode();
        m_textured->setOwnsTexture(true);
        m_textured->setFiltering(QSGTexture::Linear);
        m_textured->setTexture(texture);
        appendChildNode(m_textured);
    } else {
        m_textured->setTexture(texture);
    }
    m_textured->setSourceRect(QRectF(image.rect()));
}

void ImageNode::setRect(const QRectF& rect)
{
    if (m_painted != nullptr)
        m_painted->setRect(rect);
    else if (m_textured != nullptr)
        m_textured->setRect(rect);
}

} // namespace virlo
