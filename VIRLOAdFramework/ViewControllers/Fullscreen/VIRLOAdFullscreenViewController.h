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

/// One item as a picture from edge to edge, with one action button where the ad says and a close button that
/// counts down first. Scene: "QDXAdFullscreenViewController".
///
/// The preload makes the views on the main thread while a worker fetches and decodes the picture, so that
/// presenting has nothing left to do. A picture that has not come by then is asked for again when the screen
/// appears, under a spinning wheel.
///
/// An item with a video shows that first, over everything, until it has ended or Menu was pressed; the close
/// button counts meanwhile. A video whose document cannot be read is left out.
///
/// First focus: the action button. Back: Menu, at any time; the close button once it has counted down.
class VIRLOAdFullscreenViewController : public VIRLOAdViewControllerBase,
                                        public VIRLOPreloadedAdViewController
{
public:
    VIRLOAdFullscreenViewController();
    ~VIRLOAdFullscreenViewController() override;

    /// Registers the scene with the storyboard.
    static void registerScene();

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
    using Picture = std::shared_ptr<const virlo::Image>;
    enum class PictureState { Awaited, Shown, Missing, AskedAgain };

    void preloadPicture(virlo::DispatchGroup group);
    void preloadVideo(virlo::DispatchGroup group);
    void layOver(const std::shared_ptr<VIRLOAdVideoViewController>& video);
    void preloadView(virlo::DispatchGroup group);
    void setUpCloseButton();
    void setUpActionButton();
    void pictureDidPreload(Picture picture);
    void showPreloadedPicture();
    void adaptCloseButtonToPicture();
    void loadPictureLate();
    void reportImpression();

    std::shared_ptr<VIRLOAdItem> m_adItem;
    std::shared_ptr<VIRLOAdServerApiImageDownloader> m_imgDownloader; ///< made before the preload goes on
    Picture m_preloadedPicture; ///< held from its decoding to its showing
    PictureState m_pictureState = PictureState::Awaited;
    virlo::View* m_focusViewPreference = nullptr;
    // Of the scene, which lives as long as this controller.
    virlo::ImageView* m_backgroundImage = nullptr;
    VIRLOTimerButton* m_closeButton = nullptr;
    virlo::ImageView* m_closeButtonHalo = nullptr;
    virlo::ActivityIndicatorView* m_activityIndicator = nullptr;
    virlo::Button* m_actionButton = nullptr;
    virlo::LayoutConstraint* m_actionButtonPositionX = nullptr;
    virlo::LayoutConstraint* m_actionButtonPositionY = nullptr;
};
