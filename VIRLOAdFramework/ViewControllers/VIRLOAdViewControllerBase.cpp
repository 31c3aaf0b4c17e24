#include "VIRLOAdViewControllerBase.h"

#include "Application.h"
#include "DispatchGroup.h"
#include "GlobalQueue.h"
#include "MainLoop.h"
#include "TapRecognizer.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdController.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOConstans.h"

#include <utility>

using virlo::Application;
using virlo::MainLoop;
using virlo::OptionalError;
using virlo::URL;

namespace
{
constexpr double earlyCheck = 5.0; ///< for quick servers
constexpr double lateCheck = 30.0; ///< for slow ones

/// The busy overlay over a screen, for as long as somebody holds this: a request that is dropped without a
/// completion removes it too.
class BusyOverlay
{
public:
    explicit BusyOverlay(virlo::View& view) : m_indicator(virlo::View::make<VIRLOActivityIndicator>())
    {
        m_indicator->shownInView(view);
    }

    ~BusyOverlay()
    {
        MainLoop::shared().post([indicator = std::move(m_indicator)] { indicator->dismiss(); });
    }

    void dismiss() { m_indicator->dismiss(); }

    BusyOverlay(const BusyOverlay&) = delete;
    BusyOverlay& operator=(const BusyOverlay&) = delete;

private:
    std::shared_ptr<VIRLOActivityIndicator> m_indicator;
};

} // namespace

VIRLOAdViewControllerBase::VIRLOAdViewControllerBase() = default;
VIRLOAdViewControllerBase::~VIRLOAdViewControllerBase() = default;

void VIRLOAdViewControllerBase::setAd(std::shared_ptr<VIRLOAdvertisement> ad)
{
    m_ad = std::move(ad);
}

void VIRLOAdViewControllerBase::setApi(std::weak_ptr<VIRLOAdServerAPI> api)
{
    m_api = std::move(api);
}

void VIRLOAdViewControllerBase::viewWillAppear()
{
    ViewController::viewWillAppear();
    // A child of another ad screen leaves Menu to its parent.
    if (dynamic_cast<VIRLOAdViewControllerBase*>(parentViewController()))
        return;
    m_menuButtonRecognizer = std::make_shared<virlo::TapRecognizer>([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->closeAd();
    });
    m_menuButtonRecognizer->setAllowedPressTypes({virlo::PressType::Menu});
    view().addGestureRecognizer(m_menuButtonRecognizer);
}

void VIRLOAdViewControllerBase::viewDidDisappear()
{
    ViewController::viewDidDisappear();
    removeForm(); // a host may present the screen again
    if (!m_menuButtonRecognizer)
        return;
    view().removeGestureRecognizer(m_menuButtonRecognizer);
    m_menuButtonRecognizer.reset();
}

void VIRLOAdViewControllerBase::openItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    const auto button = item ? item->actionButton() : nullptr;
    const auto actionType = button ? button->actionType() : std::nullopt;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Open item (%@): %@", actionType, item);
    if (actionType == "CLICK_TO_APPSTORE")
        openAppFromItem(item);
    else if (actionType == "CLICK_TO_CONTENT")
        openContentForItem(item);
    else if (actionType == "CLICK_TO_EMAIL" || actionType == "CLICK_TO_CALL" || actionType == "CLICK_TO_SMS")
        showFormForItem(item);
}

std::function<bool()> VIRLOAdViewControllerBase::closedFromNowOn() const
{
    return [self = shared_from_this(), this, closings = m_closings.load()] { return m_closings != closings; };
}

void VIRLOAdViewControllerBase::openAppFromItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Initiate download: %@", item->clickURL());
    const auto server = api();
    if (!server)
        return;
    // The requests hold the screen: what follows them is the viewer's choice, not a matter of who else holds
    // it.
    const auto self = std::static_pointer_cast<VIRLOAdViewControllerBase>(shared_from_this());
    const auto isClosed = closedFromNowOn();
    const auto overlay = std::make_shared<BusyOverlay>(view());
    const auto resolved = [self, isClosed, item, overlay](const std::optional<URL>& url,
                                                          const OptionalError&) {
        if (isClosed())
            return;
        MainLoop::shared().post([isClosed, overlay, url] {
            overlay->dismiss();
            if (!isClosed())
                Application::openURL(url);
        });
        // On this thread, without waiting for the page to open.
        self->completeAd();
        if (item->activationCheckURL())
            VIRLOAppRequestStore::sharedStore()->addItem(*item->activationCheckURL());
    };
    server->registerClickForItemWithCompletion(*item, [self, isClosed, item, resolved](const OptionalError&) {
        if (const auto strongApi = isClosed() ? nullptr : self->api())
            strongApi->initiateAppDownloadByURLWithCompletion(item->clickURL(), resolved);
    });
}

void VIRLOAdViewControllerBase::openContentForItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    const auto server = api();
    if (!server)
        return;
    const auto opened = [item](bool accepted) {
        if (accepted)
            return;
        VIRLOAdFrameworkLogger::logInfoWithFormat("Cannot open URL %@, opening app store at %@",
                                                  item->clickURL(), item->clickFallback());
        Application::openURL(item->clickFallback());
    };
    server->registerClickForItemWithCompletion(
        *item, [isClosed = closedFromNowOn(), item, opened](const OptionalError&) {
            MainLoop::shared().post([isClosed, item, opened] {
                if (!isClosed())
                    Application::openURL(item->clickURL(), opened);
            });
        });
}

void VIRLOAdViewControllerBase::closeAd()
{
    const auto controller = VIRLOAdController::sharedAdController();
    controller->checkAvailableCurrencyAfterTimeInterval(earlyCheck);
    controller->checkAvailableCurrencyAfterTimeInterval(lateCheck);
    if (m_formViewController) {
        closeForm();
        return;
    }
    if (const auto video = firstVideo()) {
        video->completeAd();
        return;
    }
    completeAdForViewer();
}

void VIRLOAdViewControllerBase::completeAdForViewer()
{
    ++m_closings;
    completeAd();
}

void VIRLOAdViewControllerBase::preloadVideo(virlo::DispatchGroup group,
                                             const std::shared_ptr<VIRLOAdItem>& item,
                                             std::function<void(VIRLOAdVideoViewController&)> show)
{
    if (!item || !item->markupURL())
        return;
    group.enter();
    const auto video = virlo::ViewController::make<VIRLOAdVideoViewController>();
    video->setApi(api());
    video->setAd(ad());
    video->setAdCompleted([weak = weakSelf(*this), weakVideo = std::weak_ptr(video)] {
        MainLoop::shared().post([weak, weakVideo] {
            const auto self = weak.lock();
            const auto ended = weakVideo.lock();
            if (!self || !ended)
                return;
            ended->view().removeFromSuperview();
            ended->removeFromParentViewController();
            self->setNeedsFocusUpdate();
            self->updateFocusIfNeeded();
        });
    });
    video->preloadAdElementsWithCompletion(
        [weak = weakSelf(*this), video, group, show = std::move(show)](const OptionalError& error) {
            MainLoop::shared().post([weak, video, group, show, failed = error.has_value()]() mutable {
                const auto self = weak.lock();
                if (self && !failed && !self->sceneHasFailed()) {
                    self->addChildViewController(video);
                    video->view().setFrame(self->view().bounds());
                    show(*video);
                }
                group.leave();
            });
        });
}

std::shared_ptr<VIRLOAdVideoViewController> VIRLOAdViewControllerBase::firstVideo() const
{
    const auto& children = childViewControllers();
    return children.empty() ? nullptr
                            : std::dynamic_pointer_cast<VIRLOAdVideoViewController>(children.front());
}

OptionalError VIRLOAdViewControllerBase::sceneError() const
{
    if (!sceneHasFailed())
        return std::nullopt;
    return virlo::Error{VIRLOAdFrameworkBundleIdentifier, 0, {{"Reason", "The scene cannot be loaded."}}};
}

void VIRLOAdViewControllerBase::reportImpressionOfItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    const auto server = api();
    if (!server || !item || item->impressionMarked() || !m_impressionsOnTheirWay.insert(item).second)
        return;
    virlo::GlobalQueue::background().async([weak = weakSelf(*this), server, item] {
        server->registerImpressionForItemWithCompletion(*item, [weak, item](const OptionalError& error) {
            if (!error)
                item->setImpressionMarked(true);
            MainLoop::shared().post([weak, item] {
                if (const auto self = weak.lock())
                    self->m_impressionsOnTheirWay.erase(item);
            });
        });
    });
}

std::vector<std::shared_ptr<VIRLOAdVideoViewController>> VIRLOAdViewControllerBase::videos() const
{
    std::vector<std::shared_ptr<VIRLOAdVideoViewController>> result;
    for (const auto& child : childViewControllers()) {
        if (auto video = std::dynamic_pointer_cast<VIRLOAdVideoViewController>(child))
            result.push_back(std::move(video));
    }
    return result;
}

std::shared_ptr<VIRLOAdVideoViewController> VIRLOAdViewControllerBase::videoOnTop()
{
    const auto subviews = view().subviews();
    for (auto subview = subviews.rbegin(); subview != subviews.rend(); ++subview) {
        if (!(*subview)->isVisible() ||
            ((*subview)->viewController() == nullptr && !(*subview)->obscuresFocus()))
            continue;
        for (const auto& video : videos()) {
            if (&video->view() == *subview)
                return video;
        }
        return nullptr;
    }
    return nullptr;
}

void VIRLOAdViewControllerBase::pressesEnded(const std::vector<virlo::Press>& presses)
{
    const auto video = videoOnTop();
    const auto others = video ? video->handlePresses(presses) : presses;
    if (!others.empty())
        ViewController::pressesEnded(others);
}

void VIRLOAdViewControllerBase::completeAd() const
{
    if (const auto completed = adCompleted())
        completed();
}
