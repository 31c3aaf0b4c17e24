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
#include "MainScreen.h"
#include "UIButtonVIRLOActionButton.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOColorSampling.h"
#include "VIRLOFocusLift.h"
#include "VIRLOFocusPreference.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOTimerButton.h"
#include "WindowPresentation.h"

#include <cmath>
#include <utility>

using virlo::DispatchGroup;
using virlo::GlobalQueue;
using virlo::MainLoop;
using virlo::OptionalError;

namespace
{

/// The least red, green and blue of a light corner.
constexpr float lightComponent = 0.9F;
constexpr double closeButtonMargin = 75.0;
constexpr double closeButtonHeight = 99.0;
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

void VIRLOAdFullscreenViewController::preloadAdElementsWithCompletion(Completion completion)
{
    const auto items = ad() ? ad()->items() : VIRLOAdvertisement::Items();
    m_adItem = items.empty() ? nullptr : items.front();
    m_imgDownloader = VIRLOAdServerApiImageDownloader::init();

    DispatchGroup group;
    preloadView(group);
    preloadImage(group);
    // Above the close button, the topmost view of the scene: the video covers everything.
    preloadVideo(group, m_adItem, [weak = weakSelf(*this)](VIRLOAdVideoViewController& video) {
        if (const auto self = weak.lock())
            self->view().insertSubviewAbove(video.view(), *self->m_closeButton);
    });
    // Holds the screen, which owns the image downloader.
    const auto self = std::static_pointer_cast<VIRLOAdFullscreenViewController>(shared_from_this());
    group.notify(GlobalQueue::high(),
                 [self, completion = std::move(completion)] { completion(self->sceneError()); });
}

void VIRLOAdFullscreenViewController::preloadView(DispatchGroup group)
{
    group.enter();
    prepareView([group]() mutable { group.leave(); });
}

void VIRLOAdFullscreenViewController::preloadImage(DispatchGroup group)
{
    if (!m_adItem)
        return;
    group.enter();
    const auto deliver = [weak = weakSelf(*this), group](const StoredImage& stored) {
        MainLoop::shared().post([weak, group, image = displayImage(stored)]() mutable {
            if (const auto self = weak.lock())
                self->imageDidPreload(std::move(image));
            group.leave();
        });
    };
    GlobalQueue::high().async([deliver, item = m_adItem, downloader = m_imgDownloader] {
        const auto store = VIRLOAdFullscreenImageStore::sharedStore();
        downloader->setImagesStore(store);
        if (const auto image = store->imageForItem(*item)) {
            deliver(image);
            return;
        }
        downloader->retrieveImageForItemWithCompletion(
            item, [deliver, item, store](const OptionalError&) { deliver(store->imageForItem(*item)); });
    });
}

VIRLOAdFullscreenViewController::DisplayImage
VIRLOAdFullscreenViewController::displayImage(const StoredImage& stored)
{
    using virlo::WindowPresentation;
    if (!stored)
        return {};
    // The image view fills the canvas. The point is in the original's pixels, whatever the image's size.
    const double y = WindowPresentation::canvasHeight - closeButtonMargin - closeButtonHeight;
    const virlo::Color corner = VIRLOColorSampling::colorAtPoint(*stored, closeButtonMargin, y);
    const bool isLight =
        corner.red >= lightComponent && corner.green >= lightComponent && corner.blue >= lightComponent;
    const double scale = virlo::MainScreen::scale();
    return {stored->covering(static_cast<int>(std::ceil(WindowPresentation::canvasWidth * scale)),
                             static_cast<int>(std::ceil(WindowPresentation::canvasHeight * scale))),
            isLight};
}

void VIRLOAdFullscreenViewController::imageDidPreload(DisplayImage image)
{
    m_preloadedImage = std::move(image);
    m_imageState = ImageState::Missing;
    if (isViewLoaded() && !sceneHasFailed())
        showPreloadedImage();
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
    if (sceneHasFailed())
        return;
    setUpCloseButton();
    setUpActionButton();
    showPreloadedImage();
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
    // The space separates the text from the icon.
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

void VIRLOAdFullscreenViewController::showPreloadedImage()
{
    if (m_imageState != ImageState::Missing || !m_preloadedImage.image)
        return;
    m_imageState = ImageState::Shown;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Background image: %@", m_preloadedImage.image);
    m_backgroundImage->setImage(std::move(m_preloadedImage.image));
    if (!m_preloadedImage.hasLightCorner)
        return;
    m_closeButton->setProgressTintColor(darkGrey);
    m_closeButton->setImage(VIRLOFrameworkImages::imageNamed("fullscreen_close_dark.png"));
    m_closeButtonHalo->setImage(VIRLOFrameworkImages::imageNamed("countdown_halo_light.png"));
}

void VIRLOAdFullscreenViewController::viewWillAppear()
{
    VIRLOAdViewControllerBase::viewWillAppear();
    if (m_imageState == ImageState::Missing)
        loadLateImage();
}

void VIRLOAdFullscreenViewController::loadLateImage()
{
    m_imageState = ImageState::RequestedAgain;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Background image: %@", m_preloadedImage.image);
    m_activityIndicator->startAnimating();
    VIRLOAdFrameworkLogger::logInfoWithFormat("Load background image");
    m_imgDownloader->retrieveImageForItemWithCompletion(
        m_adItem, [weak = weakSelf(*this), item = m_adItem](const OptionalError&) {
            auto image = displayImage(VIRLOAdFullscreenImageStore::sharedStore()->imageForItem(*item)).image;
            VIRLOAdFrameworkLogger::logInfoWithFormat("Background image loaded: %@", image);
            MainLoop::shared().post([weak, image = std::move(image)]() mutable {
                const auto self = weak.lock();
                // Without an image the wheel keeps spinning. The close button deliberately keeps its normal
                // appearance: it may have been shown for seconds and must not change under the viewer's eyes.
                if (!self || !image)
                    return;
                self->m_backgroundImage->setImage(std::move(image));
                self->m_activityIndicator->stopAnimating();
            });
        });
}

void VIRLOAdFullscreenViewController::viewDidAppear()
{
    VIRLOAdViewControllerBase::viewDidAppear();
    reportImpressionOfItem(m_adItem);
    VIRLOFocusPreference::VIRLO_markFocusPreference(*m_actionButton);
    m_focusViewPreference = m_actionButton;
    setNeedsFocusUpdate();
    updateFocusIfNeeded();
    m_closeButton->start();
}

void VIRLOAdFullscreenViewController::openForm()
{
    openItem(m_adItem);
}

virlo::View* VIRLOAdFullscreenViewController::preferredFocusedView()
{
    virlo::View* const form = focusOfForm();
    return form != nullptr ? form : m_focusViewPreference;
}

void VIRLOAdFullscreenViewController::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    VIRLOAdViewControllerBase::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    // The close button is not a Button: it keeps its size.
    VIRLOFocusLift::fullscreen.apply(context, coordinator);
}
