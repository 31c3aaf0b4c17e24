#include "UIRuntime.h"

#include "QtMainLoop.h"
#include "SceneLibrary.h"
#include "ViewAnimation.h"
#include "ViewController.h"
#include "WindowPresentation.h"

#include <QCoreApplication>

namespace virlo
{

namespace
{

bool begun = false;

}

void UIRuntime::begin()
{
    if (begun || QCoreApplication::instance() == nullptr)
        return;
    begun = true;
    qAddPostRoutine(&UIRuntime::end);
}

void UIRuntime::end()
{
    begun = false;
    WindowPresentation::endAll();
    ViewAnimation::cancelAll();
    QtMainLoop::instance().flush();
    ViewController::unloadViews();
    SceneLibrary::clear();
}

} // namespace virlo
