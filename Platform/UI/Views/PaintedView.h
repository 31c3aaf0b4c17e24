#pragma once

#include "View.h"

#include <QImage>

class QPainter;

namespace virlo
{

/// A view whose content is drawn by QPainter, antialiased and smooth under scale, above its background.
/// `paint` is called on the main thread, only after `setNeedsDisplay`, a change of size or of the window's
/// scale.
class PaintedView : public virlo::View
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit PaintedView(QQuickItem* superview = nullptr);
    ~PaintedView() override;

    void setNeedsDisplay();

protected:
    /// Draws into `bounds()`; the painter's unit is the point, whatever the resolution.
    virtual void paint(QPainter& painter) = 0;

    /// Pixels of the window per point, apart from views' own transforms, which come and go; 1 without one.
    [[nodiscard]] double resolution() const;

    void updatePolish() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    QSGNode* updateContentNode(QSGNode* node) override;

private:
    QImage m_drawing;
    double m_resolution = 1; ///< of the drawing
    bool m_drawingIsNew = false;
};

} // namespace virlo
