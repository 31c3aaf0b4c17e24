#pragma once

#include "View.h"

#include <QPointer>

namespace virlo
{

/// An invisible area that redirects the focus: an arrow key that would reach the area focuses its preferred
/// view instead. Laid out like any item. No effect while its preferred view is focused already, cannot be
/// focused or is destroyed, and while the guide is not `enabled`. Main thread.
class FocusGuide : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(virlo::View* preferredFocusedView READ preferredFocusedView WRITE setPreferredFocusedView
                   NOTIFY preferredFocusedViewChanged FINAL)

public:
    explicit FocusGuide(QQuickItem* parent = nullptr);

    [[nodiscard]] View* preferredFocusedView() const;
    void setPreferredFocusedView(View* view);

signals:
    void preferredFocusedViewChanged();

private:
    QPointer<View> m_preferred;
};

} // namespace virlo
