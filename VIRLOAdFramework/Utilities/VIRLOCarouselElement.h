#pragma once

#include "View.h"

/// One element of a VIRLOCarousel; its user adds what it shows. It can always be focused, and wears a ring
/// around its edge, below its content, while it is. Main thread.
class VIRLOCarouselElement : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit VIRLOCarouselElement(QQuickItem* superview = nullptr);

    [[nodiscard]] bool canBecomeFocused() const override { return true; }

protected:
    [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::Graphic; }

    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void layOutRing();

    virlo::View* m_ring;
    virlo::View* m_gap; ///< keeps the ring apart from content of its colour
};
