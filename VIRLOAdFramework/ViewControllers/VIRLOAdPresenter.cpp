#include "VIRLOAdPresenter.h"

#include "MainLoop.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdViewController.h"
#include "ViewController.h"
#include "WindowPresentation.h"

#include <utility>

using virlo::MainLoop;
using virlo::WindowPresentation;

namespace
{

/// Sets the dismissal as `adCompleted` for one presentation, where the host has set none.
class Dismissal
{
public:
    explicit Dismissal(const std::shared_ptr<VIRLOAdViewController>& screen) : m_screen(screen)
    {
        if (screen->adCompleted())
            return;
        m_isSet = true;
        screen->setAdCompleted([weak = std::weak_ptr(screen)] { VIRLOAdPresenter::dismiss(weak.lock()); });
    }

    ~Dismissal()
    {
        const auto screen = m_screen.lock();
        if (m_isSet && screen)
            screen->setAdCompleted({});
    }

    Dismissal(const Dismissal&) = delete;
    Dismissal& operator=(const Dismissal&) = delete;

private:
    std::weak_ptr<VIRLOAdViewController> m_screen;
    bool m_isSet = false;
};

} // namespace

void VIRLOAdPresenter::present(const std::shared_ptr<VIRLOAdViewController>& screen, QQuickWindow* window,
                               std::function<void()> dismissed)
{
    auto controller = std::dynamic_pointer_cast<virlo::ViewController>(screen);
    if (!controller) {
        VIRLOAdFrameworkLogger::logErrorWithFormat("There is no ad screen to present.");
        if (dismissed)
            MainLoop::shared().post(std::move(dismissed));
        return;
    }
    auto dismissal = std::make_shared<Dismissal>(screen);
    WindowPresentation::Handlers handlers;
    handlers.didEnd = [dismissal = std::move(dismissal),
                       dismissed = std::move(dismissed)](WindowPresentation::End) mutable {
        dismissal.reset();
        if (dismissed)
            dismissed();
    };
    WindowPresentation::present(std::move(controller), window, std::move(handlers));
}

void VIRLOAdPresenter::dismiss(const std::shared_ptr<VIRLOAdViewController>& screen)
{
    const auto controller = std::dynamic_pointer_cast<virlo::ViewController>(screen);
    if (!controller)
        return;
    MainLoop::performOnMain([controller] { controller->dismissViewController(); });
}
