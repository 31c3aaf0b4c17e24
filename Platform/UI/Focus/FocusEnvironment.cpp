#include "FocusEnvironment.h"

#include "FocusEngine.h"
#include "View.h"

namespace virlo
{

bool FocusEnvironment::shouldUpdateFocusInContext(const FocusUpdateContext&)
{
    return true;
}

void FocusEnvironment::didUpdateFocusInContextWithAnimationCoordinator(const FocusUpdateContext&,
                                                                       FocusAnimationCoordinator&)
{
}

void FocusEnvironment::setNeedsFocusUpdate()
{
    const View* view = focusEnvironmentView();
    if (FocusEngine* engine = view != nullptr ? FocusEngine::engineOf(*view) : nullptr)
        engine->setNeedsUpdate(*this);
}

void FocusEnvironment::updateFocusIfNeeded()
{
    const View* view = focusEnvironmentView();
    if (FocusEngine* engine = view != nullptr ? FocusEngine::engineOf(*view) : nullptr)
        engine->updateIfNeeded();
}

} // namespace virlo
