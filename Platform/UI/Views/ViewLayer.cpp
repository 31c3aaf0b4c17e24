#include "ViewLayer.h"

#include <QMatrix4x4>

namespace virlo
{

ViewTransform::ViewTransform(QQuickItem* view) : QQuickTransform(view)
{
    appendToItem(view);
}

void ViewTransform::setValue(const AffineTransform& value)
{
    if (value == m_value)
        return;
    m_value = value;
    update();
}

void ViewTransform::applyTo(QMatrix4x4* matrix) const
{
    const auto* view = static_cast<const QQuickItem*>(parent());
    const auto x = static_cast<float>(view->width() / 2);
    const auto y = static_cast<float>(view->height() / 2);
    const auto f = [](double value) { return static_cast<float>(value); };
    matrix->translate(x, y);
    *matrix *= QMatrix4x4(f(m_value.a), f(m_value.c), 0, f(m_value.tx), //
                          f(m_value.b), f(m_value.d), 0, f(m_value.ty), //
                          0, 0, 1, 0,                                   //
                          0, 0, 0, 1);
    matrix->translate(-x, -y);
}

bool ViewLayer::drawsShadow() const
{
    return shadowOpacity > 0 && shadowColor.alpha() > 0;
}

void ViewLayerNode::update(const ViewLayer& layer, QSizeF size, QQuickWindow& window)
{
    updateShadow(layer, size, window);
    updateBackground(layer, size, window);
}

void ViewLayerNode::updateShadow(const ViewLayer& layer, QSizeF size, QQuickWindow& window)
{
    if (!layer.drawsShadow() || size.isEmpty()) {
        delete m_shadow;
        m_shadow = nullptr;
        return;
    }
    if (m_shadow == nullptr) {
        m_shadow = new QSGOpacityNode;
        m_shadow->appendChildNode(new RoundedPatch);
        prependChildNode(m_shadow);
    }
    // The colour's own alpha is part of the opacity and the blur changes in half points, so that an animation
    // of either does not compute the blur again for every frame.
    const QRgb color = qRgb(layer.shadowColor.red(), layer.shadowColor.green(), layer.shadowColor.blue());
    const double blur = std::round(layer.shadowRadius * 2) / 2;
    m_shadow->setOpacity(layer.shadowOpacity * layer.shadowColor.alphaF());
    static_cast<RoundedPatch*>(m_shadow->firstChild())
        ->update({size, color, layer.cornerRadius, blur}, layer.shadowOffset, window);
}

void ViewLayerNode::updateBackground(const ViewLayer& layer, QSizeF size, QQuickWindow& window)
{
    const bool round = layer.cornerRadius > 0;
    const bool draws = layer.drawsBackground() && !size.isEmpty();
    if (!draws || !round) {
        delete m_roundBackground;
        m_roundBackground = nullptr;
    }
    if (!draws || round) {
        delete m_squareBackground;
        m_squareBackground = nullptr;
    }
    if (!draws)
        return;
    const auto insert = [this](QSGNode* node) {
        if (m_shadow != nullptr)
            insertChildNodeAfter(node, m_shadow);
        else
            prependChildNode(node);
    };
    if (round) {
        if (m_roundBackground == nullptr)
            insert(m_roundBackground = new RoundedPatch);
        m_roundBackground->update({size, layer.background.rgba(), layer.cornerRadius, 0}, {}, window);
        return;
    }
    if (m_squareBackground == nullptr)
        insert(m_squareBackground = window.createRectangleNode());
    m_squareBackground->setRect(QRectF(QPointF(), size));
    m_squareBackground->setColor(layer.background);
}

void ViewLayerNode::setContent(QSGNode* content)
{
    // Replaced nodes are already deleted, which also removed them from this parent; a new one may have the
    // same address.
    m_content = content;
    if (content != nullptr && content->parent() == nullptr)
        appendChildNode(content);
}

} // namespace virlo
