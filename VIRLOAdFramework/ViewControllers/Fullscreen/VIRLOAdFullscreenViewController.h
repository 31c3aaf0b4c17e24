#pragma once

#include "VIRLOAdViewControllerBase.h"
#include "VIRLOPreloadedAdViewController.h"

#include <memory>

class VIRLOAdServerApiImageDownloader;
class VIRLOAdVideoViewController;
class VIRLOTimerButton;

namespace virlo
{
class ActivityIndicatorView;
class Button;
class DispatchGroup;
class Image;
class ImageView;
class LayoutConstraint;
} // namespace virlo

/// One item as a full-screen image, with one action button where the ad says and a close button that counts
/// down first. Scene: "QDXAdFullscreenViewController".
///
/// The preload creates the views on the main thread while a worker loads and decodes the image, so that
/// presenting has nothing left to do. An image that is missing then is requested again when the screen
/// appears, under a spinning wheel. A scene that cannot be loaded ends the preload with an error.
///
/// An item with a video shows that first, over everything, until it has ended or Menu was pressed; the close
/// button counts down meanwhile. A video whose document cannot be read is left out.
///
/// First focus: the action button. Back: Menu, at any time; the close button once it has counted down.
class VIRLOAdFullscreenViewController : public VIRLOAdViewControllerBase,
                                        public VIRLOPreloadedAdViewController
{
public:
    VIRLOAdFullscreenViewController();
    ~VIRLOAdFullscreenViewController() override;

    void preloadAdElementsWithCompletion(Completion completion) override;

    /// The item shown; null before the preload and for an advertisement without items.
    [[nodiscard]] const std::shared_ptr<VIRLOAdItem>& adItem() const noexcept { return m_adItem; }

    /// The action button's action: opens the item.
    void openForm();

    [[nodiscard]] virlo::View* preferredFocusedView() override;
    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;

protected:
    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewDidAppear() override;

private:
    using StoredImage = std::shared_ptr<const virlo::Image>;

    /// An image reduced to the window's pixels.
    struct DisplayImage {
        StoredImage image;
        bool hasLightCorner = false; ///< under the close button
    };

    enum class ImageState { Pending, Shown, Missing, RequestedAgain };

    void preloadView(virlo::DispatchGroup group);
    void preloadImage(virlo::DispatchGroup group);
    [[nodiscard]] static DisplayImage displayImage(const StoredImage& stored);
    void imageDidPreload(DisplayImage image);
    void setUpCloseButton();
    void setUpActionButton();
    void showPreloadedImage();
    void loadLateImage();

    std::shared_ptr<VIRLOAdItem> m_adItem;
    std::shared_ptr<VIRLOAdServerApiImageDownloader>
        m_imgDownloader;           ///< set before the preload's tasks begin
    DisplayImage m_preloadedImage; ///< from its decoding until it is shown
    ImageState m_imageState = ImageState::Pending;
    virlo::View* m_focusViewPreference = nullptr;
    // Objects of the scene, which exists as long as this controller.
    virlo::ImageView* m_backgroundImage = nullptr;
    VIRLOTimerButton* m_closeButton = nullptr;
    virlo::ImageView* m_closeButtonHalo = nullptr;
    virlo::ActivityIndicatorView* m_activityIndicator = nullptr;
    virlo::Button* m_actionButton = nullptr;
    virlo::LayoutConstraint* m_actionButtonPositionX = nullptr;
    virlo::LayoutConstraint* m_actionButtonPositionY = nullptr;
};
