#pragma once

#include "NotificationCenter.h"
#include "QueuePlayer.h"
#include "SerialQueue.h"
#include "VIRLOAdViewControllerBase.h"
#include "VIRLOPreloadedAdViewController.h"
#include "VIRLOVASTCreative.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class VIRLOActivityIndicator;
class VIRLOAdVideoView;
class VIRLOTimerProgress;
class VIRLOVASTAd;
class VIRLOVASTMediaFile;

/// Plays the linear creatives of the VAST document behind the ad's first item, one video after the other, and
/// requests the document's tracking URLs as it progresses. A ring in the lower left corner counts the
/// remaining time down; a busy indicator covers a video that waits for the network, which continues by
/// itself. Has no scene: made in code.
///
/// The preload reads the document and builds the view and the player on the main thread; the first video
/// loads from then on. It completes when there is something to play. A document with nothing playable keeps
/// it polling once a second, without limit, until nobody holds the screen any more; the completion is then
/// never called. A host that needs an answer sets `setPreloadTimeLimit` on the controller. When the last
/// video has ended or failed the screen closes itself.
///
/// Nothing on it takes the focus. Back: Menu at any time. Play/pause and mute keys of the remote control the
/// player. After it was left the screen has no player: shown again it stays black.
///
/// Main thread, except for the preload and the operations that say otherwise.
class VIRLOAdVideoViewController : public VIRLOAdViewControllerBase, public VIRLOPreloadedAdViewController
{
public:
    using VideoAds = std::vector<std::shared_ptr<VIRLOVASTAd>>;
    using Item = std::shared_ptr<virlo::PlayerItem>;
    using MediaFile = std::shared_ptr<VIRLOVASTMediaFile>;

    static const char* const kVideoProgressNotifications;

    VIRLOAdVideoViewController();
    ~VIRLOAdVideoViewController() override;

    /// An error where the ad has no item or its document cannot be read.
    void preloadAdElementsWithCompletion(Completion completion) override;

    /// Loads the view if needed. Null before there is anything to play and after the screen was left.
    [[nodiscard]] std::shared_ptr<virlo::QueuePlayer> videoPlayer();

    /// Empty before the document was read.
    [[nodiscard]] const VideoAds& videoAds() const noexcept { return m_videoAds; }

    /// The player's first list of items; null before it is built and once the player is gone.
    [[nodiscard]] std::shared_ptr<const virlo::QueuePlayer::Items> videoItems() const
    {
        return m_videoItems.lock();
    }

    /// Null unless the screen is shown.
    [[nodiscard]] const std::shared_ptr<void>& playerTimeObserver() const noexcept
    {
        return m_playerTimeObserver;
    }

    [[nodiscard]] bool playerON() const noexcept { return m_playerON; }

    [[nodiscard]] const VIRLOTimerProgress& videoProgress() const;

    [[nodiscard]] const VIRLOActivityIndicator& activityIndicator() const { return *m_activityIndicator; }

    /// The first one as wide as the screen, else the one with the most pixels; null where none has any. Any
    /// thread.
    [[nodiscard]] static MediaFile
    bestMEdiaFileForCurrentViewFromCollection(const VIRLOVASTCreative::MediaFiles& files);
    /// By the item's index in `videoItems`; null without an item and for one of another player. Any thread,
    /// once the view was loaded.
    [[nodiscard]] std::shared_ptr<VIRLOVASTCreative> creativeForPlayerItem(const Item& item) const;

    [[nodiscard]] bool isPlayerAtEnd() const;
    /// Shows the busy indicator over a video that waits; removes it from one that can continue, and plays
    /// that.
    void updatePlaybackState();
    void pause();
    void resume();
    void handleAccessLogEntry(const virlo::PlayerItem& item);

    // Reports: each queues its requests for the background queue, where they begin in the order of the calls
    void reportImpression() const;
    void reportCreativeView(const Item& item) const;
    void reportStart(const Item& item) const;
    void reportPause(const Item& item) const;
    void reportResume(const Item& item) const;
    /// Also registers the click that earns the reward, where the ad's item has one.
    void reportComplete(const Item& item) const;
    void reportClose() const;
    /// At most one quartile a call; false where none is due. `item` is the one whose time it is: the player
    /// may have gone on to the next one. Any thread.
    bool reportVideoProgress(double seconds, const Item& item);
    /// `muted` is the change's own value: by the time it is reported the player may have changed again.
    void reportMutedPlayer(bool muted) const;

    void observeValueForKeyPathOfObjectChangeContext(const std::string& keyPath,
                                                     const virlo::QueuePlayer* object,
                                                     const virlo::QueuePlayer::Change& change, void* context);

    /// Handles play/pause and mute; returns the other presses.
    [[nodiscard]] std::vector<virlo::Press> handlePresses(const std::vector<virlo::Press>& presses);
    void pressesEnded(const std::vector<virlo::Press>& presses) override;

protected:
    [[nodiscard]] std::unique_ptr<virlo::View> loadView() override;
    void viewDidLoad() override;
    void viewDidAppear() override;
    void viewWillDisappear() override;

private:
    void awaitFirstItem(Completion completion);
    void buildPlayer();
    [[nodiscard]] Item makeItem(const VIRLOVASTCreative& creative);
    void observePlayer(const std::shared_ptr<virlo::QueuePlayer>& player);
    void observeApplication();
    void applicationDidEnterBackground();
    void applicationDidBecomeActive();
    void currentItemDidChange(const Item& before, const Item& now);
    void playerTimeDidPass(const Item& item, double seconds, double sinceLast);
    void resetQuartiles(const Item& item);

    [[nodiscard]] std::shared_ptr<virlo::QueuePlayer> currentPlayer() const { return m_player.lock(); }

    [[nodiscard]] Item currentItem() const;
    void reportEvent(const char* event, const Item& item) const;
    void registerRewardClick() const;
    void enqueueReport(std::function<void()> report) const;

    struct Reports;

    VideoAds m_videoAds;                        ///< set before the view is loaded, not changed after
    std::weak_ptr<virlo::QueuePlayer> m_player; ///< the view's; likewise
    std::weak_ptr<const virlo::QueuePlayer::Items> m_videoItems; ///< likewise
    const std::shared_ptr<Reports> m_reports;
    VIRLOAdVideoView* m_videoView = nullptr;      ///< while the view is loaded
    QPointer<VIRLOTimerProgress> m_videoProgress; ///< the view's
    std::shared_ptr<VIRLOActivityIndicator> m_activityIndicator;
    std::shared_ptr<virlo::SerialQueue> m_videoProgressNotifications;
    std::shared_ptr<void> m_playerTimeObserver;
    std::vector<std::shared_ptr<void>> m_playerObservers;
    std::vector<std::unique_ptr<virlo::NotificationCenter::Observation>> m_accessLogObservations;
    std::vector<std::unique_ptr<virlo::NotificationCenter::Observation>> m_applicationObservations;
    bool m_playerON = false;
    bool m_pausedByApplication = false;
    std::mutex m_quartileMutex; ///< guards the following: calls come from the progress queue, too
    std::weak_ptr<virlo::PlayerItem> m_quartileItem; ///< the item that they belong to
    bool m_firstQuartileReported = false;
    bool m_midpointReported = false;
    bool m_thirdQuartileReported = false;
};
