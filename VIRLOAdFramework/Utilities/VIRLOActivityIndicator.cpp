#include "VIRLOActivityIndicator.h"

#include "ActivityIndicatorView.h"

VIRLOActivityIndicator::VIRLOActivityIndicator() : m_activityIndicator(new virlo::ActivityIndicatorView(this))
{
    setBackgroundColor(QColor::fromRgbF(0, 0, 0, 0.75F));
    setAccessibleName(QStringLiteral("Loading"));
    setFocusable(true);
    setObscuresFocus(true);
}

void VIRLOActivityIndicator::shownInView(virlo::View& view)
{
    view.addSubview(shared_from_this());
    view.pinToEdges(*this);
    m_activityIndicator->startAnimating();
}

void VIRLOActivityIndicator::dismiss()
{
    m_activityIndicator->stopAnimating();
    removeFromSuperview();
}

void VIRLOActivityIndicator::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    const QSizeF wheel = m_activityIndicator->bounds().size();
    m_activityIndicator->setFrame({(now.width() - wheel.width()) / 2, (now.height() - wheel.height()) / 2,
                                   wheel.width(), wheel.height()});
}
