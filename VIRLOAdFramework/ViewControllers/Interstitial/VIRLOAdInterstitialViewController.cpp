#include "VIRLOAdInterstitialViewController.h"

#include "Animation.h"
#include "Convert.h"
#include "DispatchGroup.h"
#include "Exception.h"
#include "GlobalQueue.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "MainLoop.h"
#include "StringFormat.h"
#include "Timer.h"
#include "UIButtonVIRLOActionButton.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdInterstitialImageStore.h"
#include "VIRLOAdInterstitialScreenshots.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOButton.h"
#include "VIRLOCarousel.h"
#include "VIRLOFocusLift.h"
#include "VIRLOFocusPreference.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOScreenText.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

using virlo::DispatchGroup;
using virlo::GlobalQueue;
using virlo::MainLoop;
using virlo::OptionalError;
using virlo::Seconds;
using VIRLOScreenText::joined;
using VIRLOScreenText::line;

namespace
{

constexpr double elementSpacing = 40.0;
constexpr double elementMagnification = 1.2;
static_assert(VIRLOAdInterstitialScreenshots::focusedSize.height() ==
              VIRLOAdInterstitialScreenshots::elementSize.height() * elementMagnification);
constexpr double imageCorner = 10.0;
constexpr QColor emptyElement(0x1d, 0x24, 0x33);

constexpr int firstStarTag = 980001;
constexpr int stars = 5;

constexpr Seconds shakingInterval{4.0};
constexpr Seconds shakeDuration{0.4}; // two times there and back, 0.1 s each way
constexpr double shakeReach = 8.0;

constexpr QSizeF videoButtonSize(460.0, 90.0);
constexpr double safeMargin = 60.0;

double inside(double position, double extent, double whole)
{
    return std::clamp(position, safeMargin, whole - safeMargin - extent);
}

} // namespace

VIRLOAdInterstitialViewController::VIRLOAdInterstitialViewController() = default;

VIRLOAdInterstitialViewController::~VIRLOAdInterstitialViewController()
{
    if (m_imgDownloader)
        m_imgDownloader->endSession();
}

void VIRLOAdInterstitialViewController::setAd(std::shared_ptr<VIRLOAdvertisement> ad)
{
    const auto items = ad ? ad->items() : VIRLOAdvertisement::Items();
    m_adItem = items.empty() ? nullptr : items.front();
    VIRLOAdViewControllerBase::setAd(std::move(ad));
    if (isViewLoaded() && !sceneHasFailed())
        showTexts();
}

// Preload

void VIRLOAdInterstitialViewController::preloadAdElementsWithCompletion(Completion completion)
{
    m_imgDownloader = VIRLOAdServerApiImageDownloader::init();
    m_screenshots = VIRLOAdInterstitialScreenshots::make(m_adItem, m_imgDownloader);

    DispatchGroup group;
    group.enter();
    prepareView([group] {
        // After the carousel was filled.
        MainLoop::shared().post([group]() mutable { group.leave(); });
    });
    preloadVideo(group, m_adItem, [weak = weakSelf(*this)](VIRLOAdVideoViewController& video) {
        const auto self = weak.lock();
        if (!self)
            return;
        self->addDownloadButton(video.view());
        self->view().addSubview(video.view());
    });
    m_screenshots->preload(group);
    // Holds the screen: the downloader that the images come through is the screen's.
    const auto self = std::static_pointer_cast<VIRLOAdInterstitialViewController>(shared_from_this());
    group.notify(GlobalQueue::high(),
                 [self, completion = std::move(completion)] { completion(self->sceneError()); });
}

void VIRLOAdInterstitialViewController::addDownloadButton(virlo::View& videoView)
{
    const auto model = m_adItem ? m_adItem->actionButton() : nullptr;
    if (!model)
        return;
    const auto button = virlo::View::make<VIRLOButton>();
    button->setCornerRadius(10.0);
    UIButtonVIRLOActionButton::applyPropertiesFromModel(*button, *model);
    button->setFocusRingWidth(6);
    button->setFocusable(true);
    // Where the ad says, but never out of sight.
    button->setFrame({QPointF(inside(model->xPosition(), videoButtonSize.width(), videoView.width()),
                              inside(model->yPosition(), videoButtonSize.height(), videoView.height())),
                      videoButtonSize});
    button->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->initiateDownload();
    });
    VIRLOFocusPreference::VIRLO_markFocusPreference(*button);
    videoView.addSubview(button);
}

// The view

void VIRLOAdInterstitialViewController::viewDidLoad()
{
    VIRLOAdViewControllerBase::viewDidLoad();
    m_carousel = outlet<VIRLOCarousel>("carousel");
    m_coverImageView = outlet<virlo::ImageView>("coverImageView");
    m_actionButton = outlet<virlo::Button>("actionButton");
    m_titleLabel = outlet<virlo::Label>("titleLabel");
    m_actionLabel = outlet<virlo::Label>("actionLabel");
    m_ratingLabel = outlet<virlo::Label>("ratingLabel");
    m_descriptionLabel = outlet<virlo::Label>("descriptionLabel");
    m_shakeOffset = outlet<virlo::LayoutConstraint>("shakeOffset");
    if (sceneHasFailed())
        return;
    showTexts();
    setUpActionButton();
    loadCover();
    setUpCarousel();
}

void VIRLOAdInterstitialViewController::showTexts()
{
    if (!m_adItem)
        return;
    const auto action = m_adItem->actionButton();
    m_titleLabel->setText(line(m_adItem->title()));
    m_actionLabel->setText(joined(line(m_adItem->price()), line(action ? action->text() : std::nullopt)));
    m_descriptionLabel->setText(virlo::toQString(m_adItem->text().value_or("")).trimmed());
    setStarRating(m_adItem->rating());
    m_ratingLabel->setText(virlo::toQString(virlo::format("%d Ratings", m_adItem->numberOfRatings())));
}

void VIRLOAdInterstitialViewController::setUpActionButton()
{
    const auto model = m_adItem ? m_adItem->actionButton() : nullptr;
    m_actionButton->setVisible(model != nullptr);
    if (!model)
        return;
    m_actionButton->setTitle(line(model->text()));
    m_actionButton->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->initiateDownload();
    });
    VIRLOFocusPreference::VIRLO_markFocusPreference(*m_actionButton);
}

void VIRLOAdInterstitialViewController::setStarRating(float rating)
{
    for (int i = 0; i < stars; ++i) {
        auto* const star = qobject_cast<virlo::ImageView*>(view().viewWithTag(firstStarTag + i));
        if (star == nullptr)
            continue;
        const auto position = static_cast<float>(i);
        if (rating > position)
            star->setImage(VIRLOFrameworkImages::imageNamed(position + 0.5F >= rating ? "Star34-half.png"
                                                                                      : "Star34-full.png"));
        else
            star->setImage(nullptr);
    }
}

void VIRLOAdInterstitialViewController::loadCover()
{
    if (!m_adItem || !m_imgDownloader)
        return;
    const auto show = [weak = weakSelf(*this), item = m_adItem](const OptionalError&) {
        auto cover = VIRLOAdInterstitialImageStore::sharedStore()->thumbnailForItem(*item);
        MainLoop::shared().post([weak, cover = std::move(cover)]() mutable {
            if (const auto self = weak.lock())
                self->m_coverImageView->setImage(std::move(cover));
        });
    };
    GlobalQueue::high().async([show, item = m_adItem, downloader = m_imgDownloader] {
        downloader->setImagesStore(VIRLOAdInterstitialImageStore::sharedStore());
        downloader->retrieveImageForItemWithCompletion(item, show);
    });
}

void VIRLOAdInterstitialViewController::setUpCarousel()
{
    m_carousel->setHSpacing(elementSpacing);
    m_carousel->setFocusMagnification(elementMagnification);
    if (!m_screenshots)
        return;
    const auto total = static_cast<int>(m_screenshots->count());
    const QString name =
        QCoreApplication::translate("VIRLOAdInterstitialViewController", "Screenshot %1 of %2");
    std::vector<QPointer<virlo::ImageView>> images;
    for (int i = 0; i < total; ++i) {
        auto element = virlo::View::make<VIRLOCarouselElement>();
        element->setFrame({QPointF(), VIRLOAdInterstitialScreenshots::elementSize});
        element->setAccessibleName(name.arg(i + 1).arg(total));
        const auto image = virlo::View::make<virlo::ImageView>();
        image->setContentMode(virlo::ImageView::ContentMode::AspectFill);
        image->setCornerRadius(imageCorner);
        image->setBackgroundColor(emptyElement);
        element->addSubview(image);
        element->pinToEdges(*image);
        images.emplace_back(image.get());
        m_elements.push_back(std::move(element));
    }
    m_screenshots->start([images](std::size_t index, std::shared_ptr<const virlo::Image> image) {
        if (images[index])
            images[index]->setImage(std::move(image));
    });
    QObject::connect(m_carousel, &VIRLOCarousel::focusedElementChanged, m_carousel,
                     [carousel = m_carousel, screenshots = m_screenshots] {
                         screenshots->setFocused(static_cast<std::size_t>(carousel->focusedElement()));
                     });
    // The screenshots may still be on their way: the carousel is filled without waiting for them.
    MainLoop::shared().post([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->fillCarousel();
    });
}

void VIRLOAdInterstitialViewController::fillCarousel()
{
    try {
        m_carousel->setElements(std::exchange(m_elements, {}));
    } catch (const virlo::Exception& exception) {
        VIRLOAdFrameworkLogger::logNoticeWithFormat("Carousel exception: %@", exception.reason());
        m_screenshots->stop();
    }
}

// On screen

void VIRLOAdInterstitialViewController::viewWillAppear()
{
    VIRLOAdViewControllerBase::viewWillAppear();
    setNeedsFocusUpdate();
}

void VIRLOAdInterstitialViewController::viewDidAppear()
{
    VIRLOAdViewControllerBase::viewDidAppear();
    reportImpressionOfItem(m_adItem);
    m_shakingTimer = virlo::Timer::repeating(shakingInterval, [weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->shakeDownloadButton();
    });
}

void VIRLOAdInterstitialViewController::viewWillDisappear()
{
    VIRLOAdViewControllerBase::viewWillDisappear();
    if (const auto timer = std::exchange(m_shakingTimer, nullptr))
        timer->invalidate();
}

void VIRLOAdInterstitialViewController::shakeDownloadButton()
{
    m_shake = virlo::Animation::run(
        shakeDuration, virlo::Animation::Curve::Linear, [weak = weakSelf(*this)](double share) {
            const auto self = weak.lock();
            if (!self)
                return;
            // There and back, twice; at rest at the end.
            const double way = std::fmod(share * 4, 2);
            const double there = way <= 1 ? way : 2 - way;
            self->m_shakeOffset->setConstant(share < 1 ? shakeReach * (2 * there - 1) : 0);
        });
}

void VIRLOAdInterstitialViewController::initiateDownload()
{
    openItem(m_adItem);
}

virlo::View* VIRLOAdInterstitialViewController::preferredFocusedView()
{
    if (virlo::View* const form = focusOfForm())
        return form;
    const auto video = firstVideo();
    if (!video)
        return m_actionButton;
    for (virlo::View* const view : video->view().subviews()) {
        if (qobject_cast<virlo::Button*>(view) != nullptr)
            return view;
    }
    return nullptr;
}

void VIRLOAdInterstitialViewController::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    VIRLOAdViewControllerBase::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    VIRLOFocusLift::interstitial.apply(context, coordinator);
}
