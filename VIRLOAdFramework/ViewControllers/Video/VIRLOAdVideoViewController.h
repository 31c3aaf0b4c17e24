#pragma once

#include "NotificationCenter.h"
#include "QueuePlayer.h"
#include "SerialQueue.h"
#include "VIRLOAdViewControllerBase.h"
#include "VIRLOPreloadedAdViewController.h"
#include "VIRLOVASTCreative.h"

#include <QPointer>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

class VIRLOActivityIndicator;
class VIRLOAdVideoView;
class VIRLOTimerProgress;
class VIRLOVASTAd;
class VIRLOVASTMediaFile;

/// Plays the linear creatives of the VAST document behind the ad's first item, one film after the other, and
/// tells the document's addresses how far it got. A ring in the lower left corner counts the rest down; a
/// wheel covers a film that waits for the network, which goes on by itself. Made in code.
///
/// The preload reads the document and builds the view and the player on the main thread; the first film loads
/// from then on. It ends when there is something to play: a document without a playable film leaves it
/// waiting, which is meant so. When the last film has ended or failed the screen closes itself.
///
/// Nothing on it takes the focus. Back: Menu at any time. Play/pause and mute of the remote do what they say.
/// The screen is dead once it has been left: shown again it has no player.
///
/// Main thread, but for the preload and the operations that say otherwise.
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

    /// Loads the view where that has not been done. Null before there is anything to play and after the
    /// screen was left.
    [[nodiscard]] std::shared_ptr<virlo::QueuePlayer> videoPlayer();

    /// Empty before the document was read.
    [[nodiscard]] const VideoAds& videoAds() const noexcept { return m_videoAds; }

    [[nodiscard]] bool playerON() const noexcept { return m_playerON; }

    [[nodiscard]] const VIRLOTimerProgress& videoProgress() const;

    [[nodiscard]] const VIRLOActivityIndicator& activityIndicator() const { return *m_activityIndicator; }

    /// The first one as wide as the screen, else the one with most pixels; null where none has any. Any
    /// thread.
    [[nodiscard]] static MediaFile
    bestMEdiaFileForCurrentViewFromCollection(const VIRLOVASTCreative::MediaFiles& files);
    /// By the item's place in the queue; null where there is none. Any thread, once the view was loaded.
    [[nodiscard]] std::shared_ptr<VIRLOVASTCreative> creativeForPlayerItem(const Item& item) const;

    [[nodiscard]] bool isPlayerAtEnd() const;
    /// Covers a film that waits with the wheel; uncovers one that can go on, and has it go on.
    void updatePlaybackState();
    void pause();
    void resume();
    void handleAccessLogEntry(const virlo::PlayerItem& item);

    // Reports: each leaves for a worker and waits for nothing
    void reportImpression() const;
    void reportCreativeView(const Item& item) const;
    void reportStart(const Item& item) const;
    void reportPause(const Item& item) const;
    void reportResume(const Item& item) const;
    /// Also registers the click that earns the reward, where the ad's item has one.
    void reportComplete(const Item& item) const;
    void reportClose() const;
    /// One quartile a call at most. On the progress queue.
    void reportVideoProgress(double seconds);
    void reportMutedPlayer() const;

    void observeValueForKeyPathOfObjectChangeContext(const std::string& keyPath,
                                                     const virlo::QueuePlayer* object,
                                                     const virlo::QueuePlayer::Change& change, void* context);

    /// Does play/pause and mute; the answer is what else is pressed.
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
    void playerTimeDidPass(double seconds, double sinceLast);

    [[nodiscard]] std::shared_ptr<virlo::QueuePlayer> currentPlayer() const { return m_player.lock(); }

    [[nodiscard]] Item currentItem() const;
    void reportEvent(const char* event, const Item& item) const;
    void registerCompletion() const;

    VideoAds m_videoAds;                        ///< set before the view is loaded, not changed after
    std::weak_ptr<virlo::QueuePlayer> m_player; ///< the view's; likewise
    std::weak_ptr<const virlo::QueuePlayer::Items> m_videoItems; ///< likewise
    VIRLOAdVideoView* m_videoView = nullptr;                     ///< while the view is loaded
    QPointer<VIRLOTimerProgress> m_videoProgress;                ///< the view's
    std::shared_ptr<VIRLOActivityIndicator> m_activityIndicator;
    std::shared_ptr<virlo::SerialQueue> m_videoProgressNotifications;
    std::shared_ptr<void> m_playerTimeObserver;
    std::vector<std::shared_ptr<void>> m_playerObservers;
    std::vector<std::unique_ptr<virlo::NotificationCenter::Observation>> m_accessLogObservations;
    std::vector<std::unique_ptr<virlo::NotificationCenter::Observation>> m_applicationObservations;
    bool m_playerON = false;
    bool m_pausedByApplication = false;
    std::atomic<bool> m_firstQuartileReported = false;
    std::atomic<bool> m_midpointReported = false;
    std::atomic<bool> m_thirdQuartileReported = false;
};
