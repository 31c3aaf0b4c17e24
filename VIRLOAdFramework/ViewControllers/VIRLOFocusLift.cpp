#include "VIRLOFocusLift.h"

#include "Button.h"
#include "FocusAnimationCoordinator.h"
#include "FocusUpdateContext.h"
#include "VIRLOFormButton.h"

#include <QPointer>

const VIRLOFocusLift VIRLOFocusLift::fullscreen{1.05, {0.0, 15.0}, 0.4, 10.0, false, false};
const VIRLOFocusLift VIRLOFocusLift::interstitial{1.1F, {3.0, 3.0}, 0.75, 10.0, true, true};
const VIRLOFocusLift VIRLOFocusLift::grid{1.15F, {3.0, 3.0}, 0.75, 10.0, true, false};

void VIRLOFocusLift::apply(const virlo::FocusUpdateContext& context,
                           virlo::FocusAnimationCoordinator& coordinator) const
{
    const auto lifted = [this](virlo::View* view) -> virlo::Button* {
        const bool isOfForm = qobject_cast<VIRLOFormButton*>(view) != nullptr;
        return isOfForm && !liftsFormButtons ? nullptr : qobject_cast<virlo::Button*>(view);
    };
    if (auto* const next = lifted(context.nextFocusedView))
        coordinator.addCoordinatedAnimations([next = QPointer(next), lift = *this] {
            if (!next)
                return;
            next->setTransform(virlo::AffineTransform::scale(lift.scale, lift.scale));
            next->setShadowColor(Qt::black);
            next->setShadowOffset(lift.shadowOffset);
            next->setShadowOpacity(lift.shadowOpacity);
            next->setShadowRadius(lift.shadowRadius);
        });
    if (auto* const previous = lifted(context.previouslyFocusedView))
        coordinator.addCoordinatedAnimations([previous = QPointer(previous), reset = resetsOffset] {
            if (!previous)
                return;
            previous->setTransform(virlo::AffineTransform());
            previous->setShadowColor(Qt::transparent);
            if (reset)
                previous->setShadowOffset({0, 0});
        });
}
