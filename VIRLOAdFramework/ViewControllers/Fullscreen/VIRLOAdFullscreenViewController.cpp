#include "VIRLOAdFullscreenViewController.h"

#include "ActivityIndicatorView.h"
#include "Button.h"
#include "Convert.h"
#include "DispatchGroup.h"
#include "GlobalQueue.h"
#include "Image.h"
#include "ImageView.h"
#include "LayoutConstraint.h"
#include "MainLoop.h"
#include "Storyboard.h"
#include "UIButtonVIRLOActionButton.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOAdStoryboardScreens.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOColorSampling.h"
#include "VIRLOFocusPreference.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOTimerButton.h"

#include <QPointer>

#include <utility>

using virlo::DispatchGroup;
using virlo::GlobalQueue;
using virlo::MainLoop;
using virlo::OptionalError;

namespace
{

/// From here on a corner counts as light.
constexpr float lightComponent = 0.9F;
constexpr double closeButtonMargin = 75.0;
constexpr double closeButtonHeight = 99.0;
constexpr double focusedScale = 1.05;
constexpr QColor darkGrey(85, 85, 85);

const char* iconNamed(const std::string& actionType)
{
    if (actionType == "CLICK_TO_EMAIL")
        return "icon_email.png";
    if (actionType == "CLICK_TO_CALL")
        return "icon_phone.png";
    if (actionType == "CLICK_TO_SMS")
        return "icon_sms.png";
    return nullptr;
}

} // namespace

VIRLOAdFullscreenViewController::VIRLOAdFullscreenViewController() = default;

VIRLOAdFullscreenViewController::~VIRLOAdFullscreenViewController()
{
    if (m_imgDownloader)
        m_imgDownloader->endSession();
}

void VIRLOAdFullscreenViewController::registerScene()
{
    virlo::Storyboard::registerScene(
        VIRLOAdStoryboardScreens::storyboardName, "QDXAdFullscreenViewController",
        QUrl(QStringLiteral("qrc:/qt/qml/VIRLOAdFramework/Storyboard/QDXAdFullscreenViewController.qml")),
        [] { return ViewController::make<VIRLOAdFullscreenViewController>(); });
}

void VIRLOAdFullscreenViewController::preloadAdElementsWithCompletion(Completion completion)
{
    const auto items = ad() ? ad()->items() : VIRLOAdvertisement::Items();
    m_adItem = items.empty() ? nullptr : items.front();
    m_imgDownloader = VIRLOAdServerApiImageDownloader::init();

    DispatchGroup group;
    preloadView(group);
    preloadPicture(group);
    preloadVideo(group);
    // Holds the screen: the downloader that the picture comes through is the screen's.
    group.notify(GlobalQueue::high(), [self = shared_from_this(), completion = std::move(completion)] {
        completion(std::nullopt);
    });
}

void VIRLOAdFullscreenViewController::preloadView(DispatchGroup group)
{
    group.enter();
    MainLoop::shared().post([weak = weakSelf(*this), group]() mutable {
        if (const auto self = weak.lock())
            self->loadViewIfNeeded();
        group.leave();
    });
}

void VIRLOAdFullscreenViewController::preloadPicture(DispatchGroup group)
{
    if (!m_adItem)
        return;
    group.enter();
    const auto hand = [weak = weakSelf(*this), group](Picture picture) {
        MainLoop::shared().post([weak, group, picture = std::move(picture)]() mutable {
            if (const auto self = weak.lock())
                self->pictureDidPreload(std::move(picture));
            group.leave();
        });
    };
    GlobalQueue::high().async([hand, item = m_adItem, downloader = m_imgDownloader] {
        const auto store = VIRLOAdFullscreenImageStore::sharedStore();
        downloader->setImagesStore(store);
        if (auto picture = store->imageForItem(*item)) {
            hand(std::move(picture));
            return;
        }
        downloader->retrieveImageForItemWithCompletion(
            item, [hand, item, store](const OptionalError&) { hand(store->imageForItem(*item)); });
    });
}

void VIRLOAdFullscreenViewController::preloadVideo(DispatchGroup group)
{
    if (!m_adItem || !m_adItem->markupURL())
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
            // What it covered may be chosen now.
            self->setNeedsFocusUpdate();
            self->updateFocusIfNeeded();
        });
    });
    video->preloadAdElementsWithCompletion(
        [weak = weakSelf(*this), video, group](const OptionalError& error) {
            MainLoop::shared().post([weak, video, group, failed = error.has_value()]() mutable {
                const auto self = weak.lock();
                if (self && !failed)
                    self->layOver(video);
                group.leave();
            });
        });
}

void VIRLOAdFullscreenViewController::layOver(const std::shared_ptr<VIRLOAdVideoViewController>& video)
{
    addChildViewController(video);
    video->view().setFrame(view().bounds());
    // The close button is the uppermost of the scene: the video covers everything.
    view().insertSubviewAbove(video->view(), *m_closeButton);
}

void VIRLOAdFullscreenViewController::pictureDidPreload(Picture picture)
{
    m_preloadedPicture = std::move(picture);
    m_pictureState = PictureState::Missing;
    if (isViewLoaded())
        showPreloadedPicture();
}

void VIRLOAdFullscreenViewController::viewDidLoad()
{
    VIRLOAdViewControllerBase::viewDidLoad();
    m_backgroundImage = outlet<virlo::ImageView>("backgroundImage");
    m_closeButton = outlet<VIRLOTimerButton>("closeButton");
    m_closeButtonHalo = outlet<virlo::ImageView>("closeButtonHalo");
    m_activityIndicator = outlet<virlo::ActivityIndicatorView>("activityIndicator");
    m_actionButton = outlet<virlo::Button>("actionButton");
    m_actionButtonPositionX = outlet<virlo::LayoutConstraint>("actionButtonPositionX");
    m_actionButtonPositionY = outlet<virlo::LayoutConstraint>("actionButtonPositionY");
    setUpCloseButton();
    setUpActionButton();
    showPreloadedPicture();
}

void VIRLOAdFullscreenViewController::setUpCloseButton()
{
    m_closeButton->setInitialTimerValue(ad() ? static_cast<double>(ad()->secondsToSkip()) : 0);
    m_closeButton->setImage(VIRLOFrameworkImages::imageNamed("fullscreen_close.png"));
    m_closeButtonHalo->setImage(VIRLOFrameworkImages::imageNamed("countdown_halo.png"));
    m_closeButton->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->closeAd();
    });
}

void VIRLOAdFullscreenViewController::setUpActionButton()
{
    const auto model = m_adItem ? m_adItem->actionButton() : nullptr;
    if (!model) {
        m_actionButton->setVisible(false);
        return;
    }
    m_actionButton->setCornerRadius(10.0);
    UIButtonVIRLOActionButton::applyPropertiesFromModel(*m_actionButton, *model);
    // The space keeps the text away from the icon.
    m_actionButton->setTitle(virlo::toQString(" " + model->text().value_or("")));
    m_actionButtonPositionX->setConstant(model->xPosition());
    m_actionButtonPositionY->setConstant(model->yPosition());
    if (const char* const icon = iconNamed(model->actionType().value_or("")))
        m_actionButton->setIcon(VIRLOFrameworkImages::imageNamedInColor(icon, model->textColor()));
    m_actionButton->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->openForm();
    });
}

void VIRLOAdFullscreenViewController::showPreloadedPicture()
{
    if (m_pictureState != PictureState::Missing || !m_preloadedPicture)
        return;
    m_pictureState = PictureState::Shown;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Background image: %@", m_preloadedPicture);
    m_backgroundImage->setImage(std::move(m_preloadedPicture));
    adaptCloseButtonToPicture();
}

void VIRLOAdFullscreenViewController::adaptCloseButtonToPicture()
{
    const double height = m_backgroundImage->frame().height();
    const virlo::Color corner = VIRLOColorSampling::colorAtPoint(
        *m_backgroundImage->image(), closeButtonMargin, height - closeButtonMargin - closeButtonHeight);
    if (corner.red < lightComponent || corner.green < lightComponent || corner.blue < lightComponent)
        return;
    m_closeButton->setProgressTintColor(darkGrey);
    m_closeButton->setImage(VIRLOFrameworkImages::imageNamed("fullscreen_close_dark.png"));
    m_closeButtonHalo->setImage(VIRLOFrameworkImages::imageNamed("countdown_halo_light.png"));
}

void VIRLOAdFullscreenViewController::viewWillAppear()
{
    VIRLOAdViewControllerBase::viewWillAppear();
    if (m_pictureState == PictureState::Missing)
        loadPictureLate();
}

void VIRLOAdFullscreenViewController::loadPictureLate()
{
    m_pictureState = PictureState::AskedAgain;
    m_activityIndicator->startAnimating();
    VIRLOAdFrameworkLogger::logInfoWithFormat("Load background image");
    m_imgDownloader->retrieveImageForItemWithCompletion(
        m_adItem, [weak = weakSelf(*this), item = m_adItem](const OptionalError&) {
            auto picture = VIRLOAdFullscreenImageStore::sharedStore()->imageForItem(*item);
            VIRLOAdFrameworkLogger::logInfoWithFormat("Background image loaded: %@", picture);
            MainLoop::shared().post([weak, picture = std::move(picture)]() mutable {
                const auto self = weak.lock();
                // Without a picture the wheel goes on. The close button keeps its normal look whatever the
                // corner: a late picture is not looked at, on purpose.
                if (!self || !picture)
                    return;
                self->m_backgroundImage->setImage(std::move(picture));
                self->m_activityIndicator->stopAnimating();
            });
        });
}

void VIRLOAdFullscreenViewController::viewDidAppear()
{
    VIRLOAdViewControllerBase::viewDidAppear();
    reportImpression();
    VIRLOFocusPreference::VIRLO_markFocusPreference(*m_actionButton);
    m_focusViewPreference = m_actionButton;
    setNeedsFocusUpdate();
    updateFocusIfNeeded();
    m_closeButton->start();
}

void VIRLOAdFullscreenViewController::reportImpression()
{
    if (!m_adItem || m_adItem->impressionMarked())
        return;
    GlobalQueue::background().async([server = api(), item = m_adItem] {
        if (!server)
            return;
        server->registerImpressionForItemWithCompletion(*item, [item](const OptionalError& error) {
            if (!error)
                item->setImpressionMarked(true);
        });
    });
}

void VIRLOAdFullscreenViewController::openForm()
{
    openItem(m_adItem);
}

virlo::View* VIRLOAdFullscreenViewController::preferredFocusedView()
{
    return m_focusViewPreference;
}

void VIRLOAdFullscreenViewController::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    VIRLOAdViewControllerBase::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    // The countdown is a control of its own kind and no button: it keeps its size.
    if (auto* const next = qobject_cast<virlo::Button*>(context.nextFocusedView))
        coordinator.addCoordinatedAnimations([next = QPointer(next)] {
            if (!next)
                return;
            next->setTransform(virlo::AffineTransform::scale(focusedScale, focusedScale));
            next->setShadowColor(Qt::black);
            next->setShadowOffset({0.0, 15.0});
            next->setShadowOpacity(0.4);
            next->setShadowRadius(10.0);
        });
    if (auto* const previous = qobject_cast<virlo::Button*>(context.previouslyFocusedView))
        coordinator.addCoordinatedAnimations([previous = QPointer(previous)] {
            if (!previous)
                return;
            previous->setTransform(virlo::AffineTransform());
            previous->setShadowColor(Qt::transparent);
        });
}
