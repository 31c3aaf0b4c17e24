#pragma once

#include "VIRLOAdViewControllerBase.h"
#include "VIRLOPreloadedAdViewController.h"

#include <memory>

class VIRLOAdInterstitialScreenshots;
class VIRLOAdServerApiImageDownloader;
class VIRLOCarousel;
class VIRLOCarouselElement;

namespace virlo
{
class Animation;
class Button;
class ImageView;
class Label;
class LayoutConstraint;
class Timer;
} // namespace virlo

/// The page of one app: cover, title, price and action, stars, description, a download button that shakes
/// now and then, and its screenshots in a carousel. Scene: "QDXAdSingleViewController".
///
/// The preload makes the views on the main thread and downloads every screenshot; the cover comes when it
/// comes. With fewer than five screenshots there is no carousel. An item with a video shows that first, over
/// everything, with a download button of its own where the ad says; when it has ended, or at Menu, the page
/// is there.
///
/// First focus: the download button. Down leads to the carousel and up back. Back: Menu, at any time.
class VIRLOAdInterstitialViewController : public VIRLOAdViewControllerBase,
                                          public VIRLOPreloadedAdViewController
{
public:
    VIRLOAdInterstitialViewController();
    ~VIRLOAdInterstitialViewController() override;

    void setAd(std::shared_ptr<VIRLOAdvertisement> ad) override;

    void preloadAdElementsWithCompletion(Completion completion) override;

    /// The item shown; null for an advertisement without items.
    [[nodiscard]] const std::shared_ptr<VIRLOAdItem>& adItem() const noexcept { return m_adItem; }

    /// The download buttons' action: opens the item.
    void initiateDownload();
    /// 0 to 5; a part of a star up to a half shows as a half star, more as a full one.
    void setStarRating(float rating);
    void shakeDownloadButton();

    /// The form's, the download button, or that of a video that covers the page.
    [[nodiscard]] virlo::View* preferredFocusedView() override;
    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;

protected:
    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewDidAppear() override;
    void viewWillDisappear() override;

private:
    void showTexts();
    void loadCover();
    void setUpActionButton();
    void setUpCarousel();
    void fillCarousel();
    void addDownloadButton(virlo::View& videoView);

    std::shared_ptr<VIRLOAdItem> m_adItem;
    std::shared_ptr<VIRLOAdServerApiImageDownloader> m_imgDownloader;
    std::shared_ptr<VIRLOAdInterstitialScreenshots> m_screenshots;
    std::vector<std::shared_ptr<VIRLOCarouselElement>> m_elements; ///< until the carousel has them
    std::shared_ptr<virlo::Timer> m_shakingTimer;
    std::shared_ptr<virlo::Animation> m_shake;
    // Of the scene, which lives as long as this controller.
    VIRLOCarousel* m_carousel = nullptr;
    virlo::ImageView* m_coverImageView = nullptr;
    virlo::Button* m_actionButton = nullptr;
    virlo::Label* m_titleLabel = nullptr;
    virlo::Label* m_actionLabel = nullptr;
    virlo::Label* m_ratingLabel = nullptr;
    virlo::Label* m_descriptionLabel = nullptr;
    virlo::LayoutConstraint* m_shakeOffset = nullptr;
};
