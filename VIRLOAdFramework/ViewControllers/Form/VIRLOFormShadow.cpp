#include "VIRLOFormShadow.h"

#include "FocusAnimationCoordinator.h"
#include "FocusUpdateContext.h"
#include "View.h"

#include <QPointer>

void VIRLOFormShadow::follow(virlo::View& view, const virlo::FocusUpdateContext& context,
                             virlo::FocusAnimationCoordinator& coordinator)
{
    if (context.nextFocusedView == &view)
        coordinator.addCoordinatedAnimations([view = QPointer(&view)] {
            if (!view)
                return;
            view->setShadowColor(Qt::black);
            view->setShadowOffset({0, 5});
            view->setShadowOpacity(0.25);
            view->setShadowRadius(5);
        });
    if (context.previouslyFocusedView == &view)
        coordinator.addCoordinatedAnimations([view = QPointer(&view)] {
            if (view)
                view->setShadowOffset({0, 0});
        });
}
