#include "GradientView.h"

#include <QLinearGradient>
#include <QPainter>

namespace virlo
{

GradientView::GradientView(QQuickItem* superview) : PaintedView(superview) {}

void GradientView::setGradient(const QColor& startColor, const QColor& endColor, QPointF startPoint,
                               QPointF endPoint)
{
    m_startColor = startColor;
    m_endColor = endColor;
    m_startPoint = startPoint;
    m_endPoint = endPoint;
    setNeedsDisplay();
}

void GradientView::paint(QPainter& painter)
{
    const auto at = [this](QPointF part) { return QPointF(part.x() * width(), part.y() * height()); };
    QLinearGradient gradient(at(m_startPoint), at(m_endPoint));
    gradient.setColorAt(0, m_startColor);
    gradient.setColorAt(1, m_endColor);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(bounds(), cornerRadius(), cornerRadius());
}

} // namespace virlo
