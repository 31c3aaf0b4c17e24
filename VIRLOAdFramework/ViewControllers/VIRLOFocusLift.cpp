#include "VIRLOFocusLift.h"

#include "Button.h"
#include "FocusAnimationCoordinator.h"
#include "FocusUpdateContext.h"

#include <QPointer>

const VIRLOFocusLift VIRLOFocusLift::fullscreen{1.05, {0.0, 15.0}, 0.4, 10.0, false};
const VIRLOFocusLift VIRLOFocusLift::interstitial{1.1F, {3.0, 3.0}, 0.75, 10.0, true};
const VIRLOFocusLift VIRLOFocusLift::grid{1.15F, {3.0, 3.0}, 0.75, 10.0, true};

void VIRLOFocusLift::apply(const virlo::FocusUpdateContext& context,
                           virlo::FocusAnimationCoordinator& coordinator) const
{
    if (auto* const next = qobject_cast<virlo::Button*>(context.nextFocusedView))
        coordinator.addCoordinatedAnimations([next = QPointer(next), lift = *this] {
            if (!next)
                return;
            next->setTransform(virlo::AffineTransform::scale(lift.scale, lift.scale));
            next->setShadowColor(Qt::black);
            next->setShadowOffset(lift.shadowOffset);
            next->setShadowOpacity(lift.shadowOpacity);
            next->setShadowRadius(lift.shadowRadius);
        });
    if (auto* const previous = qobject_cast<virlo::Button*>(context.previouslyFocusedView))
        coordinator.addCoordinatedAnimations([previous = QPointer(previous), reset = resetsOffset] {
            if (!previous)
                return;
            previous->setTransform(virlo::AffineTransform());
            previous->setShadowColor(Qt::transparent);
            if (reset)
                previous->setShadowOffset({0, 0});
        });
}
