#pragma once

#include "AffineTransform.h"

#include <QColor>
#include <QPointF>
#include <QQuickItem>
#include <QRectF>

#include <array>
#include <memory>

namespace virlo
{

class ViewAnimation;
class ViewLayer;
enum class AnimatableProperty;
using AnimatableValue = std::array<double, 6>;

/// The appearance of a View: frame, background with round corners, shadow, transform. Everything is drawn
/// alike on Qt Quick's software backend and on the others, smooth under scale. Main thread.
///
/// `frame` is in the superview's points before the transform, which applies about the centre. Properties
/// marked animatable are animated when set inside `Animation::animate`; they return the value set last, not
/// the one shown meanwhile.
class LayerItem : public QQuickItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(double alpha READ alpha WRITE setAlpha NOTIFY opacityChanged FINAL)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY layerChanged FINAL)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY layerChanged FINAL)
    Q_PROPERTY(QColor shadowColor READ shadowColor WRITE setShadowColor NOTIFY layerChanged FINAL)
    Q_PROPERTY(QPointF shadowOffset READ shadowOffset WRITE setShadowOffset NOTIFY layerChanged FINAL)
    Q_PROPERTY(double shadowOpacity READ shadowOpacity WRITE setShadowOpacity NOTIFY layerChanged FINAL)
    Q_PROPERTY(double shadowRadius READ shadowRadius WRITE setShadowRadius NOTIFY layerChanged FINAL)

public:
    explicit LayerItem(QQuickItem* parent = nullptr);
    ~LayerItem() override;

    [[nodiscard]] QRectF frame() const; ///< animatable
    void setFrame(const QRectF& frame);

    [[nodiscard]] QRectF bounds() const { return {0, 0, frame().width(), frame().height()}; }

    [[nodiscard]] double alpha() const; ///< animatable; at 0 the view cannot have the focus
    void setAlpha(double alpha);
    [[nodiscard]] AffineTransform transform() const; ///< animatable
    void setTransform(const AffineTransform& transform);
    [[nodiscard]] QColor backgroundColor() const; ///< animatable; transparent at first
    void setBackgroundColor(const QColor& color);
    [[nodiscard]] double cornerRadius() const;
    void setCornerRadius(double radius);
    /// The shadow has the shape of the view's rounded bounds; it is drawn while its opacity and colour are
    /// not transparent.
    [[nodiscard]] QColor shadowColor() const; ///< animatable; black at first
    void setShadowColor(const QColor& color);
    [[nodiscard]] QPointF shadowOffset() const; ///< animatable
    void setShadowOffset(const QPointF& offset);
    [[nodiscard]] double shadowOpacity() const; ///< animatable; 0 at first
    void setShadowOpacity(double opacity);
    [[nodiscard]] double shadowRadius() const; ///< animatable; the blur's standard deviation in points
    void setShadowRadius(double radius);

signals:
    void layerChanged();

protected:
    /// The node between the background and the subviews: `node`, which was returned last, changed or deleted
    /// and replaced; null for nothing. Called on the render thread while the main thread waits.
    virtual QSGNode* updateContentNode(QSGNode* node);

    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) final;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    friend class ViewAnimation;

    void set(AnimatableProperty property, const AnimatableValue& value);
    [[nodiscard]] AnimatableValue get(AnimatableProperty property) const;
    void show(AnimatableProperty property, const AnimatableValue& value);
    [[nodiscard]] AnimatableValue shown(AnimatableProperty property) const;
    void animationEnded(AnimatableProperty property, const ViewAnimation& animation);

    std::unique_ptr<ViewLayer> m_layer;
};

} // namespace virlo
