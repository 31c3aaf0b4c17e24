#pragma once

#include "View.h"

#include <memory>

namespace virlo
{
class ActivityIndicatorView;
}

/// A busy overlay: dark, with a spinning wheel, over a whole view. While it is shown it has the focus, so
/// that nothing below can be pressed again; Menu passes through. Made by `virlo::View::make`; the view that
/// it covers keeps it until `dismiss`. Main thread.
class VIRLOActivityIndicator : public virlo::View, public std::enable_shared_from_this<VIRLOActivityIndicator>
{
    Q_OBJECT

public:
    VIRLOActivityIndicator();

    /// Moves to `view` if it is shown already.
    void shownInView(virlo::View& view);
    /// Nothing if it is not shown.
    void dismiss();

    [[nodiscard]] const virlo::ActivityIndicatorView& activityIndicator() const noexcept
    {
        return *m_activityIndicator;
    }

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    virlo::ActivityIndicatorView* m_activityIndicator; ///< a child of this item
};
