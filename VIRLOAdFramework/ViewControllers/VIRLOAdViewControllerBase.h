#pragma once

#include "Error.h"
#include "VIRLOAdViewController.h"
#include "ViewController.h"

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <vector>

class VIRLOAdItem;
class VIRLOAdServerAPI;
class VIRLOAdVideoViewController;
class VIRLOAdvertisement;
class VIRLOFormViewController;

namespace virlo
{
class DispatchGroup;
class TapRecognizer;
} // namespace virlo

/// The base of every full-screen ad screen: Menu closes it, and an item is opened by its action type after
/// its click was registered. Held by shared pointers (`virlo::ViewController::make` or a storyboard); `setAd`
/// and `setApi` come first, on any thread; the rest on the main thread.
class VIRLOAdViewControllerBase : public virlo::ViewController, public VIRLOAdViewController
{
public:
    VIRLOAdViewControllerBase();
    ~VIRLOAdViewControllerBase() override;

    [[nodiscard]] const std::shared_ptr<VIRLOAdvertisement>& ad() const noexcept { return m_ad; }

    virtual void setAd(std::shared_ptr<VIRLOAdvertisement> ad);

    /// Null once the server object is destroyed.
    [[nodiscard]] std::shared_ptr<VIRLOAdServerAPI> api() const { return m_api.lock(); }

    void setApi(std::weak_ptr<VIRLOAdServerAPI> api);

    /// Opens the item's app page or content, or the contact form. Nothing for an item of another action type
    /// or without an action button; then no click is registered either. Once the viewer has closed the
    /// screen, by Menu or its close button, nothing opens any more; otherwise an opening that has begun is
    /// completed, whoever holds the screen.
    void openItem(const std::shared_ptr<VIRLOAdItem>& item);
    /// Registers the click, resolves the item's `clickURL`, opens the result, ends the ad by `adCompleted`,
    /// called on a worker, and stores the item's conversion-poll URL. A failure of a step does not stop the
    /// next.
    void openAppFromItem(const std::shared_ptr<VIRLOAdItem>& item);
    /// Registers the click and opens the item's `clickURL`, or its `clickFallback` where nothing accepts
    /// that. The ad stays behind the content: `adCompleted` is not called.
    void openContentForItem(const std::shared_ptr<VIRLOAdItem>& item);

    /// Shows the contact form over the screen; its videos pause. Nothing while a form is shown. No click is
    /// registered: what the form sends is its own affair. A finished form calls `adCompleted`.
    void showFormForItem(const std::shared_ptr<VIRLOAdItem>& item);
    /// Fades the form out, removes it and resumes the videos; nothing without one.
    void closeForm();

    /// Not null from the beginning of its fade-in to the end of its fade-out.
    [[nodiscard]] const std::shared_ptr<VIRLOFormViewController>& formViewController() const noexcept
    {
        return m_formViewController;
    }

    /// Menu, or a close button: closes the form, or else a video that is the first child, or else the ad
    /// itself. Each time it also requests currency checks in 5 and in 30 seconds.
    void closeAd();

    /// The form's, while it is shown.
    [[nodiscard]] virlo::View* preferredFocusedView() override;

    /// Play/pause and mute go to a child video, unless a form or another child lies above it; the rest is
    /// passed on.
    void pressesEnded(const std::vector<virlo::Press>& presses) override;

    /// Null while the screen is not shown, and for the child of another ad screen, which handles Menu itself.
    [[nodiscard]] const std::shared_ptr<virlo::TapRecognizer>& menuButtonRecognizer() const noexcept
    {
        return m_menuButtonRecognizer;
    }

protected:
    void viewWillAppear() override;
    void viewDidDisappear() override;

    /// Where the form wants the focus; null while there is none, or it fades out.
    [[nodiscard]] virlo::View* focusOfForm() const;

    /// As its close button does: ends the ad, and nothing that is on its way opens any more.
    void completeAdForViewer();

    /// If the item has a video: preloads it as a child that fills the screen, removes it once it has ended,
    /// and then updates the focus. `show` inserts its view into this one, on the main thread. A video whose
    /// document cannot be read is left out. The group is left when that is done.
    void preloadVideo(virlo::DispatchGroup group, const std::shared_ptr<VIRLOAdItem>& item,
                      std::function<void(VIRLOAdVideoViewController& video)> show);
    /// The first child if it is a video, else null.
    [[nodiscard]] std::shared_ptr<VIRLOAdVideoViewController> firstVideo() const;

    /// For the preload's completion: an error if the scene could not be loaded.
    [[nodiscard]] virlo::OptionalError sceneError() const;

    /// Reports the item's impression in the background, unless the server has accepted a report of it or one
    /// is on its way.
    void reportImpressionOfItem(const std::shared_ptr<VIRLOAdItem>& item);

    /// This object as its own class, for callbacks that may come after its end.
    template <typename Self>
    [[nodiscard]] static std::weak_ptr<Self> weakSelf(Self& self)
    {
        return std::static_pointer_cast<Self>(self.shared_from_this());
    }

private:
    void completeAd() const;
    void removeForm();
    [[nodiscard]] std::vector<std::shared_ptr<VIRLOAdVideoViewController>> videos() const;
    /// The one that lies above all other children and overlays; null if there is none.
    [[nodiscard]] std::shared_ptr<VIRLOAdVideoViewController> videoOnTop();
    /// Tells, on any thread, whether the viewer has closed the screen since this call. Holds the screen.
    [[nodiscard]] std::function<bool()> closedFromNowOn() const;

    std::shared_ptr<VIRLOAdvertisement> m_ad;
    std::weak_ptr<VIRLOAdServerAPI> m_api;
    std::shared_ptr<virlo::TapRecognizer> m_menuButtonRecognizer;
    std::shared_ptr<VIRLOFormViewController> m_formViewController;
    bool m_formFadesOut = false;
    std::atomic<int> m_closings{0}; ///< how often the viewer has closed the screen
    std::set<std::shared_ptr<VIRLOAdItem>> m_impressionsOnTheirWay;
};
