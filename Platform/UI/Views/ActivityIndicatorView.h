#pragma once

#include "View.h"

#include <QTimer>

namespace virlo
{

/// A spinning wheel, 74 × 74 points unless sized otherwise. It takes no time of the processor while it does
/// not animate or cannot be seen, and is not visible at all while it does not animate.
class ActivityIndicatorView : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(bool animating READ isAnimating NOTIFY animatingChanged FINAL)

public:
    explicit ActivityIndicatorView(QQuickItem* superview = nullptr);
    ~ActivityIndicatorView() override;

    [[nodiscard]] QColor color() const; ///< white at first
    void setColor(const QColor& color);

    [[nodiscard]] bool isAnimating() const noexcept { return m_animating; }

    Q_INVOKABLE void startAnimating();
    Q_INVOKABLE void stopAnimating();

signals:
    void colorChanged();
    void animatingChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    class Wheel;

    void spinWhereSeen();

    Wheel* m_wheel;
    QTimer m_step;
    QMetaObject::Connection m_windowShown;
    bool m_animating = false;
};

} // namespace virlo
