#pragma once

#include "VIRLOAdViewController.h"
#include "ViewController.h"

#include <functional>
#include <memory>
#include <vector>

class VIRLOAdItem;
class VIRLOAdServerAPI;
class VIRLOAdVideoViewController;
class VIRLOAdvertisement;

namespace virlo
{
class DispatchGroup;
class TapRecognizer;
} // namespace virlo

/// What every full-screen ad screen has: Menu closes it, and an item is opened by its action type after its
/// click was registered. Held by shared pointers (`virlo::ViewController::make` or a storyboard); `setAd` and
/// `setApi` before anything else, on any thread; the rest on the main thread.
class VIRLOAdViewControllerBase : public virlo::ViewController, public VIRLOAdViewController
{
public:
    VIRLOAdViewControllerBase();
    ~VIRLOAdViewControllerBase() override;

    [[nodiscard]] const std::shared_ptr<VIRLOAdvertisement>& ad() const noexcept { return m_ad; }

    virtual void setAd(std::shared_ptr<VIRLOAdvertisement> ad);

    /// Null once the server object has gone.
    [[nodiscard]] std::shared_ptr<VIRLOAdServerAPI> api() const { return m_api.lock(); }

    void setApi(std::weak_ptr<VIRLOAdServerAPI> api);

    /// Opens what the item offers: its app's page or its content. Nothing for an item of another action type
    /// or without an action button; then no click is registered either. What is under way when the screen
    /// goes is dropped.
    void openItem(const std::shared_ptr<VIRLOAdItem>& item);
    /// Registers the click, finds out where the item's `clickURL` leads, opens that, and ends the ad by
    /// `adCompleted`, called on a worker. A failure on the way stops nothing: what was found is opened.
    void openAppFromItem(const std::shared_ptr<VIRLOAdItem>& item);
    /// Registers the click and opens the item's `clickURL`, or its `clickFallback` where nothing accepts
    /// that. The ad stays behind the content: `adCompleted` is not called.
    void openContentForItem(const std::shared_ptr<VIRLOAdItem>& item);

    /// Menu, or a close button: ends what lies over the ad, else a video that is its first child, else the ad
    /// itself. Each time it also has rewards looked for in 5 and in 30 seconds, for quick servers and for
    /// slow ones.
    void closeAd();

    /// Play/pause and mute go to a video that is a child; the rest is passed on.
    void pressesEnded(const std::vector<virlo::Press>& presses) override;

    /// Present while the screen can be seen, unless it is a part of another ad screen, which has Menu then.
    [[nodiscard]] const std::shared_ptr<virlo::TapRecognizer>& menuButtonRecognizer() const noexcept
    {
        return m_menuButtonRecognizer;
    }

protected:
    void viewWillAppear() override;
    void viewDidDisappear() override;

    /// Where something lies over the ad that takes a close itself: ends that and answers true, and the ad
    /// stays. The base has nothing of the kind.
    [[nodiscard]] virtual bool closeOverlay();

    /// Where the item has a video: preloads it as a child that takes the whole screen, leaves once it has
    /// ended, and then has the focus placed anew. `show` puts its view into this one, on the main thread. A
    /// video whose document cannot be read is left out. Stays in the group until that is done.
    void preloadVideo(virlo::DispatchGroup group, const std::shared_ptr<VIRLOAdItem>& item,
                      std::function<void(VIRLOAdVideoViewController& video)> show);
    /// The first child, where it is a video; else null.
    [[nodiscard]] std::shared_ptr<VIRLOAdVideoViewController> firstVideo() const;

    /// Reports the item's impression in the background, unless the server has taken a report of it.
    void reportImpressionOfItem(const std::shared_ptr<VIRLOAdItem>& item) const;

    /// For the time in which something lies over the ad.
    void pauseVideos();
    void resumeVideos();

    /// This object as its own class, for work that comes back after it may have gone.
    template <typename Self>
    [[nodiscard]] static std::weak_ptr<Self> weakSelf(Self& self)
    {
        return std::static_pointer_cast<Self>(self.shared_from_this());
    }

private:
    void completeAd() const;
    [[nodiscard]] std::vector<std::shared_ptr<VIRLOAdVideoViewController>> videos() const;
    void appDownloadDidResolve(const VIRLOAdItem& item) const;

    std::shared_ptr<VIRLOAdvertisement> m_ad;
    std::weak_ptr<VIRLOAdServerAPI> m_api;
    std::shared_ptr<virlo::TapRecognizer> m_menuButtonRecognizer;
};
