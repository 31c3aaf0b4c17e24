#include "UIRuntime.h"

#include "MainLoop.h"
#include "ProcessShutdown.h"
#include "QtMainLoop.h"
#include "QtWork.h"
#include "SceneLoader.h"
#include "ViewAnimation.h"
#include "ViewController.h"
#include "WindowPresentation.h"

#include <QCoreApplication>

namespace virlo
{

namespace
{

bool begun = false;

/// A host that calls exit() destroys no application object: other threads are kept from Qt's static objects
/// here. Presented screens are left as they are, since Qt's per-thread animation data may be destroyed by
/// now.
void stop()
{
    QtWork::end();
    if (begun && MainLoop::isMainThread()) // exit() may have been called elsewhere
        SceneLoader::clear();
}

} // namespace

void UIRuntime::begin()
{
    if (begun || QCoreApplication::instance() == nullptr)
        return;
    begun = true;
    static const bool registered = ProcessShutdown::add(ProcessShutdown::Stage::Screens, &stop);
    static_cast<void>(registered);
    qAddPostRoutine(&UIRuntime::end);
}

void UIRuntime::end()
{
    begun = false;
    WindowPresentation::endAll();
    ViewAnimation::cancelAll();
    QtMainLoop::instance().flush();
    ViewController::unloadViews();
    SceneLoader::clear();
}

} // namespace virlo
