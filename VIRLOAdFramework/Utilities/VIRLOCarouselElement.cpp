#include "VIRLOCarouselElement.h"

namespace
{

constexpr double corner = 10; // of the content and of the shadow
constexpr double gapWidth = 4;
constexpr double ringWidth = 6;

void surround(virlo::View& ring, const QSizeF& size, double reach)
{
    ring.setFrame(QRectF(QPointF(), size).adjusted(-reach, -reach, reach, reach));
    ring.setCornerRadius(corner + reach);
}

} // namespace

VIRLOCarouselElement::VIRLOCarouselElement(QQuickItem* superview)
    : View(superview)
    , m_ring(new View(this))
    , m_gap(new View(this))
{
    setCornerRadius(corner);
    m_ring->setBackgroundColor(Qt::white);
    m_gap->setBackgroundColor(Qt::black);
    m_ring->setVisible(false);
    m_gap->setVisible(false);
    connect(this, &View::focusedChanged, this, [this] {
        m_ring->setVisible(isFocused());
        m_gap->setVisible(isFocused());
        layOutRing();
    });
}

void VIRLOCarouselElement::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    layOutRing();
}

void VIRLOCarouselElement::layOutRing()
{
    if (!isFocused())
        return;
    surround(*m_ring, size(), gapWidth + ringWidth);
    surround(*m_gap, size(), gapWidth);
}
