#include "FocusGuide.h"

namespace virlo
{

FocusGuide::FocusGuide(QQuickItem* parent) : QQuickItem(parent) {}

View* FocusGuide::preferredFocusedView() const
{
    return m_preferred;
}

void FocusGuide::setPreferredFocusedView(View* view)
{
    if (m_preferred == view)
        return;
    m_preferred = view;
    emit preferredFocusedViewChanged();
}

} // namespace virlo
