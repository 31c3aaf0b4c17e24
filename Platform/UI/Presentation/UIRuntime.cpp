#include "UIRuntime.h"

#include "QtMainLoop.h"
#include "QtWork.h"
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

/// A host that calls exit() destroys no application object. Its thread's own objects still go before those of
/// the process: the last moment at which other threads can be kept from Qt's statics. What stands on the
/// screen is left as it is, since what animates it is this thread's own and may be gone.
class ThreadEnd
{
public:
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;

    ~ThreadEnd()
    {
        QtWork::end();
        if (begun)
            SceneLibrary::clear();
    }
};

} // namespace

void UIRuntime::begin()
{
    if (begun || QCoreApplication::instance() == nullptr)
        return;
    begun = true;
    thread_local const ThreadEnd threadEnd;
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
