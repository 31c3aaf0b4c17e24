#pragma once

#include "View.h"

#include <QPointer>

namespace virlo
{

/// An unseen area that leads the focus: an arrow key that would reach the area gives the focus to its
/// preferred view instead. Laid out like any item (in QML by anchors and bindings). Without effect while its
/// preferred view has the focus already, cannot take it or is gone, and while the guide is not `enabled`.
/// Main thread.
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
