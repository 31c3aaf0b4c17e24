#pragma once

#include "View.h"

#include <QTimer>

namespace virlo
{

/// A spinning wheel, 74 × 74 points by default. It is visible only while it animates, and uses no CPU while
/// it does not animate or is not visible.
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

    void updateTimer();

    Wheel* m_wheel;
    QTimer m_timer;
    QMetaObject::Connection m_windowShown;
    bool m_animating = false;
};

} // namespace virlo
