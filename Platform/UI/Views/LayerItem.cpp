#include "LayerItem.h"

#include "ViewLayer.h"

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

AnimatableValue fromColor(const QColor& color)
{
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF(), 0, 0};
}

QColor asColor(const AnimatableValue& value)
{
    const auto part = [&](std::size_t i) { return static_cast<float>(std::clamp(value[i], 0.0, 1.0)); };
    return QColor::fromRgbF(part(0), part(1), part(2), part(3));
}

} // namespace

LayerItem::LayerItem(QQuickItem* parent) : QQuickItem(parent), m_layer(std::make_unique<ViewLayer>())
{
    setFlag(ItemHasContents);
}

LayerItem::~LayerItem()
{
    for (const auto& [property, target] : std::exchange(m_layer->targets, {}))
        target.animation->release(*this, property);
}

void LayerItem::set(AnimatableProperty property, const AnimatableValue& value)
{
    ViewAnimation* collecting = ViewAnimation::collecting();
    const auto running = m_layer->targets.find(property);
    if (running != m_layer->targets.end()) {
        if (running->second.animation != collecting) {
            ViewAnimation* before = running->second.animation;
            m_layer->targets.erase(running);
            before->release(*this, property);
        }
    } else if (value == shown(property)) {
        return;
    }
    if (collecting == nullptr) {
        show(property, value);
        return;
    }
    collecting->move(*this, property, shown(property), value);
    m_layer->targets[property] = {value, collecting};
}

AnimatableValue LayerItem::get(AnimatableProperty property) const
{
    const auto running = m_layer->targets.find(property);
    return running != m_layer->targets.end() ? running->second.value : shown(property);
}

void LayerItem::animationEnded(AnimatableProperty property, const ViewAnimation& animation)
{
    const auto running = m_layer->targets.find(property);
    if (running != m_layer->targets.end() && running->second.animation == &animation)
        m_layer->targets.erase(running);
}

void LayerItem::show(AnimatableProperty property, const AnimatableValue& value)
{
    switch (property) {
    case AnimatableProperty::Frame:
        setPosition({value[0], value[1]});
        setSize({value[2], value[3]});
        return;
    case AnimatableProperty::Alpha:
        setOpacity(value[0]);
        return;
    case AnimatableProperty::Transform:
        if (m_layer->transform == nullptr)
            m_layer->transform = new ViewTransform(this);
        m_layer->transform->setValue({value[0], value[1], value[2], value[3], value[4], value[5]});
        return;
    case AnimatableProperty::BackgroundColor:
        m_layer->background = asColor(value);
        break;
    case AnimatableProperty::ShadowColor:
        m_layer->shadowColor = asColor(value);
        break;
    case AnimatableProperty::ShadowOffset:
        m_layer->shadowOffset = {value[0], value[1]};
        break;
    case AnimatableProperty::ShadowOpacity:
        m_layer->shadowOpacity = value[0];
        break;
    case AnimatableProperty::ShadowRadius:
        m_layer->shadowRadius = value[0];
        break;
    }
    update();
    emit layerChanged();
}

AnimatableValue LayerItem::shown(AnimatableProperty property) const
{
    switch (property) {
    case AnimatableProperty::Frame:
        return {x(), y(), width(), height(), 0, 0};
    case AnimatableProperty::Alpha:
        return {opacity(), 0, 0, 0, 0, 0};
    case AnimatableProperty::Transform: {
        const AffineTransform t =
            m_layer->transform != nullptr ? m_layer->transform->value() : AffineTransform();
        return {t.a, t.b, t.c, t.d, t.tx, t.ty};
    }
    case AnimatableProperty::BackgroundColor:
        return fromColor(m_layer->background);
    case AnimatableProperty::ShadowColor:
        return fromColor(m_layer->shadowColor);
    case AnimatableProperty::ShadowOffset:
        return {m_layer->shadowOffset.x(), m_layer->shadowOffset.y(), 0, 0, 0, 0};
    case AnimatableProperty::ShadowOpacity:
        return {m_layer->shadowOpacity, 0, 0, 0, 0, 0};
    case AnimatableProperty::ShadowRadius:
        return {m_layer->shadowRadius, 0, 0, 0, 0, 0};
    }
    return {};
}

QRectF LayerItem::frame() const
{
    const AnimatableValue value = get(AnimatableProperty::Frame);
    return {value[0], value[1], value[2], value[3]};
}

void LayerItem::setFrame(const QRectF& frame)
{
    set(AnimatableProperty::Frame, {frame.x(), frame.y(), frame.width(), frame.height(), 0, 0});
}

double LayerItem::alpha() const
{
    return get(AnimatableProperty::Alpha)[0];
}

void LayerItem::setAlpha(double alpha)
{
    set(AnimatableProperty::Alpha, {std::clamp(alpha, 0.0, 1.0), 0, 0, 0, 0, 0});
}

AffineTransform LayerItem::transform() const
{
    const AnimatableValue value = get(AnimatableProperty::Transform);
    return {value[0], value[1], value[2], value[3], value[4], value[5]};
}

void LayerItem::setTransform(const AffineTransform& t)
{
    set(AnimatableProperty::Transform, {t.a, t.b, t.c, t.d, t.tx, t.ty});
}

QColor LayerItem::backgroundColor() const
{
    return asColor(get(AnimatableProperty::BackgroundColor));
}

void LayerItem::setBackgroundColor(const QColor& color)
{
    set(AnimatableProperty::BackgroundColor, fromColor(color));
}

double LayerItem::cornerRadius() const
{
    return m_layer->cornerRadius;
}

void LayerItem::setCornerRadius(double radius)
{
    if (m_layer->cornerRadius == radius)
        return;
    m_layer->cornerRadius = std::max(0.0, radius);
    update();
    emit layerChanged();
}

QColor LayerItem::shadowColor() const
{
    return asColor(get(AnimatableProperty::ShadowColor));
}

void LayerItem::setShadowColor(const QColor& color)
{
    set(AnimatableProperty::ShadowColor, fromColor(color));
}

QPointF LayerItem::shadowOffset() const
{
    const AnimatableValue value = get(AnimatableProperty::ShadowOffset);
    return {value[0], value[1]};
}

void LayerItem::setShadowOffset(const QPointF& offset)
{
    set(AnimatableProperty::ShadowOffset, {offset.x(), offset.y(), 0, 0, 0, 0});
}

double LayerItem::shadowOpacity() const
{
    return get(AnimatableProperty::ShadowOpacity)[0];
}

void LayerItem::setShadowOpacity(double opacity)
{
    set(AnimatableProperty::ShadowOpacity, {std::clamp(opacity, 0.0, 1.0), 0, 0, 0, 0, 0});
}

double LayerItem::shadowRadius() const
{
    return get(AnimatableProperty::ShadowRadius)[0];
}

void LayerItem::setShadowRadius(double radius)
{
    constexpr double most = 200; // what is drawn grows with its square
    set(AnimatableProperty::ShadowRadius, {std::clamp(radius, 0.0, most), 0, 0, 0, 0, 0});
}

QSGNode* LayerItem::updateContentNode(QSGNode* node)
{
    delete node;
    return nullptr;
}

QSGNode* LayerItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    auto* node = static_cast<ViewLayerNode*>(old);
    if (node == nullptr)
        node = new ViewLayerNode;
    node->update(*m_layer, size(), *window());
    node->setContent(updateContentNode(node->content()));
    return node;
}

void LayerItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() == before.size())
        return;
    if (m_layer->transform != nullptr)
        m_layer->transform->centreMoved();
    update();
}

} // namespace virlo
