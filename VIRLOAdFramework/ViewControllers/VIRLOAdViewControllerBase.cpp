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

#include <utility>

using virlo::Application;
using virlo::MainLoop;
using virlo::OptionalError;
using virlo::URL;

namespace
{
constexpr double soonAfterClosing = 5.0;
constexpr double longAfterClosing = 30.0;

/// Covers a screen for as long as anybody may still answer: an exchange that is dropped unanswered takes its
/// cover with it.
class Cover
{
public:
    explicit Cover(virlo::View& view) : m_indicator(virlo::View::make<VIRLOActivityIndicator>())
    {
        m_indicator->shownInView(view);
    }

    ~Cover()
    {
        MainLoop::shared().post([indicator = std::move(m_indicator)] { indicator->dismiss(); });
    }

    void lift() { m_indicator->dismiss(); }

    Cover(const Cover&) = delete;
    Cover& operator=(const Cover&) = delete;

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
    // A part of another ad screen leaves Menu to that one.
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
    if (!m_menuButtonRecognizer)
        return;
    view().removeGestureRecognizer(m_menuButtonRecognizer);
    m_menuButtonRecognizer.reset();
}

void VIRLOAdViewControllerBase::openItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    if (!item || !item->actionButton())
        return;
    const std::string actionType = item->actionButton()->actionType().value_or("");
    VIRLOAdFrameworkLogger::logInfoWithFormat("Open item (%@): %@", actionType, item);
    if (actionType == "CLICK_TO_APPSTORE")
        openAppFromItem(item);
    else if (actionType == "CLICK_TO_CONTENT")
        openContentForItem(item);
}

void VIRLOAdViewControllerBase::openAppFromItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    const auto server = api();
    if (!server)
        return;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Initiate download: %@", item->clickURL());
    const auto cover = std::make_shared<Cover>(view());
    const auto resolved = [weak = weakSelf(*this), item, cover](const std::optional<URL>& url,
                                                                const OptionalError&) {
        const auto self = weak.lock();
        if (!self)
            return;
        MainLoop::shared().post([cover, url] {
            cover->lift();
            Application::openURL(url);
        });
        // At once and on this thread: who waits for the ad's end need not wait for the page.
        self->completeAd();
        if (item->activationCheckURL())
            VIRLOAppRequestStore::sharedStore()->addItem(*item->activationCheckURL());
    };
    server->registerClickForItemWithCompletion(
        *item, [weak = weakSelf(*this), item, resolved](const OptionalError&) {
            const auto self = weak.lock();
            if (const auto strongApi = self ? self->api() : nullptr)
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
    server->registerClickForItemWithCompletion(*item,
                                               [weak = weakSelf(*this), item, opened](const OptionalError&) {
                                                   if (weak.lock())
                                                       Application::openURL(item->clickURL(), opened);
                                               });
}

void VIRLOAdViewControllerBase::closeAd()
{
    const auto controller = VIRLOAdController::sharedAdController();
    controller->checkAvailableCurrencyAfterTimeInterval(soonAfterClosing);
    controller->checkAvailableCurrencyAfterTimeInterval(longAfterClosing);
    if (closeOverlay())
        return;
    if (const auto video = firstVideo())
        video->completeAd();
    else
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
                if (self && !failed) {
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

void VIRLOAdViewControllerBase::reportImpressionOfItem(const std::shared_ptr<VIRLOAdItem>& item) const
{
    if (!item || item->impressionMarked())
        return;
    virlo::GlobalQueue::background().async([server = api(), item] {
        if (!server)
            return;
        server->registerImpressionForItemWithCompletion(*item, [item](const OptionalError& error) {
            if (!error)
                item->setImpressionMarked(true);
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

void VIRLOAdViewControllerBase::pauseVideos()
{
    for (const auto& video : videos())
        video->pause();
}

void VIRLOAdViewControllerBase::resumeVideos()
{
    for (const auto& video : videos())
        video->resume();
}

void VIRLOAdViewControllerBase::pressesEnded(const std::vector<virlo::Press>& presses)
{
    std::vector<virlo::Press> others = presses;
    for (const auto& video : videos())
        others = video->handlePresses(others);
    if (!others.empty())
        ViewController::pressesEnded(others);
}

bool VIRLOAdViewControllerBase::closeOverlay()
{
    return false;
}

void VIRLOAdViewControllerBase::completeAd() const
{
    if (const auto completed = adCompleted())
        completed();
}
