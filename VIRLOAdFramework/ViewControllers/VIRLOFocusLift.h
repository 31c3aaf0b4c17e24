#pragma once

#include <QPointF>

namespace virlo
{
class FocusAnimationCoordinator;
struct FocusUpdateContext;
} // namespace virlo

/// How a screen lifts the button that has the focus; each screen has a row of its own. Main thread.
struct VIRLOFocusLift {
    double scale;
    QPointF shadowOffset;
    double shadowOpacity;
    double shadowRadius;
    bool resetsOffset; ///< of the shadow, with the loss of the focus; its colour becomes clear in any case
    bool liftsFormButtons; ///< also those of the contact form, which has a look of its own

    static const VIRLOFocusLift fullscreen;
    static const VIRLOFocusLift interstitial;
    static const VIRLOFocusLift grid;

    /// Lifts the next view and lets the previous one down, each where it is a button, in the move's
    /// animations.
    void apply(const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator) const;
};
