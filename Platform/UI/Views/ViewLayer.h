#pragma once

#include "AffineTransform.h"
#include "RoundedPatch.h"
#include "ViewAnimation.h"

#include <QColor>
#include <QPointF>
#include <QQuickItem>
#include <QSGNode>
#include <QSGRectangleNode>

#include <map>

namespace virlo
{

/// The transform of a view about its centre.
class ViewTransform : public QQuickTransform
{
public:
    explicit ViewTransform(QQuickItem* view);

    [[nodiscard]] const AffineTransform& value() const noexcept { return m_value; }

    void setValue(const AffineTransform& value);

    void centreMoved() { update(); }

    void applyTo(QMatrix4x4* matrix) const override;

private:
    AffineTransform m_value;
};

/// A view's appearance apart from its content, and which of its properties are being animated.
class ViewLayer
{
public:
    struct Target {
        AnimatableValue value;
        ViewAnimation* animation;
    };

    QColor background = Qt::transparent;
    double cornerRadius = 0;
    QColor shadowColor = Qt::black;
    QPointF shadowOffset;
    double shadowOpacity = 0;
    double shadowRadius = 0;
    ViewTransform* transform = nullptr;
    std::map<AnimatableProperty, Target> targets;

    [[nodiscard]] bool drawsShadow() const;

    [[nodiscard]] bool drawsBackground() const { return background.alpha() > 0; }
};

/// The scene-graph side of a layer: shadow, background, content, in this order. Shadow and round corners are
/// images stretched between their corners, so they cost the same on every backend and stay smooth under
/// scale.
///
/// It, RoundedPatch and ImageNode are transform nodes without a transform: the software renderer places a
/// child that is added later only under nodes that it keeps a state for, and plain nodes have none.
class ViewLayerNode : public QSGTransformNode
{
public:
    void update(const ViewLayer& layer, QSizeF size, QQuickWindow& window);

    [[nodiscard]] QSGNode* content() const noexcept { return m_content; }

    void setContent(QSGNode* content);

private:
    void updateShadow(const ViewLayer& layer, QSizeF size, QQuickWindow& window);
    void updateBackground(const ViewLayer& layer, QSizeF size, QQuickWindow& window);

    QSGOpacityNode* m_shadow = nullptr;
    RoundedPatch* m_roundBackground = nullptr;
    QSGRectangleNode* m_squareBackground = nullptr;
    QSGNode* m_content = nullptr;
};

} // namespace virlo
