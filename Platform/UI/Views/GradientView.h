#pragma once

#include "PaintedView.h"

#include <QColor>
#include <QPointF>

namespace virlo
{

/// A linear gradient between two colours along any line; its ends are in parts of the view, (0, 0) to (1, 1)
/// from the top left to the bottom right. Main thread.
class GradientView : public virlo::PaintedView
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit GradientView(QQuickItem* superview = nullptr);

    void setGradient(const QColor& startColor, const QColor& endColor, QPointF startPoint, QPointF endPoint);

protected:
    void paint(QPainter& painter) override;

private:
    QColor m_startColor;
    QColor m_endColor;
    QPointF m_startPoint;
    QPointF m_endPoint;
};

} // namespace virlo
