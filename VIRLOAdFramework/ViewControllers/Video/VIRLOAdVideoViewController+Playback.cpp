#include "VIRLOAdVideoViewController.h"

#include "MainLoop.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdVideoView.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOTimerProgress.h"

#include <algorithm>
#include <utility>
#include <variant>

using virlo::NotificationCenter;
using virlo::PressType;
using virlo::QueuePlayer;

namespace
{

constexpr virlo::Seconds tickInterval{1};

VIRLOAdVideoViewController::Item itemOf(const QueuePlayer::Value& value)
{
    const auto* const item = std::get_if<VIRLOAdVideoViewController::Item>(&value);
    return item != nullptr ? *item : nullptr;
}

} // namespace

VIRLOAdVideoViewController::Item VIRLOAdVideoViewController::currentItem() const
{
    const auto player = currentPlayer();
    return player ? player->currentItem() : nullptr;
}

// Showing

void VIRLOAdVideoViewController::viewDidAppear()
{
    VIRLOAdViewControllerBase::viewDidAppear();
    m_videoProgress->setTimerValue(m_videoProgress->initialTimerValue());
    const auto player = videoPlayer();
    if (player) {
        resetQuartiles(player->currentItem());
        observePlayer(player);
        observeApplication();
    }
    reportImpression();
    reportCreativeView(currentItem());
    if (player)
        player->play();
    m_playerON = true;
    updatePlaybackState();
    reportStart(currentItem());
}

void VIRLOAdVideoViewController::observePlayer(const std::shared_ptr<QueuePlayer>& player)
{
    for (const char* const keyPath : {QueuePlayer::currentItemKeyPath, QueuePlayer::mutedKeyPath,
                                      QueuePlayer::rateKeyPath, QueuePlayer::playbackLikelyToKeepUpKeyPath}) {
        m_playerObservers.push_back(player->addObserverForKeyPath(
            keyPath, [weak = weakSelf(*this), keyPath](const QueuePlayer::Change& change) {
                if (const auto self = weak.lock())
                    self->observeValueForKeyPathOfObjectChangeContext(keyPath, self->currentPlayer().get(),
                                                                      change, nullptr);
            }));
    }
    m_playerTimeObserver = player->addPeriodicTimeObserver(
        tickInterval, m_videoProgressNotifications,
        [weak = weakSelf(*this), last = 0.0](const Item& item, virlo::Seconds time) mutable {
            const double delta = time.count() - std::exchange(last, time.count());
            if (const auto self = weak.lock())
                self->playerTimeDidPass(item, time.count(), delta);
        });
}

void VIRLOAdVideoViewController::observeApplication()
{
    // While the host is in the background the ad must neither be heard nor pass unseen.
    const auto observe = [this](const char* name, void (VIRLOAdVideoViewController::*react)()) {
        m_applicationObservations.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [weak = weakSelf(*this), react](const virlo::Notification&) {
                virlo::MainLoop::performOnMain([weak, react] {
                    if (const auto self = weak.lock())
                        (*self.*react)();
                });
            }));
    };
    observe(virlo::ApplicationDidEnterBackgroundNotification,
            &VIRLOAdVideoViewController::applicationDidEnterBackground);
    observe(virlo::ApplicationDidBecomeActiveNotification,
            &VIRLOAdVideoViewController::applicationDidBecomeActive);
}

void VIRLOAdVideoViewController::applicationDidEnterBackground()
{
    if (!m_playerON || !currentItem())
        return;
    m_pausedByApplication = true;
    pause();
}

void VIRLOAdVideoViewController::applicationDidBecomeActive()
{
    if (std::exchange(m_pausedByApplication, false))
        resume();
}

void VIRLOAdVideoViewController::playerTimeDidPass(const Item& item, double seconds, double sinceLast)
{
    reportVideoProgress(seconds, item);
    // Deliberate: the step back to 0 at the next video's start counts as well, so the number rises by what
    // the video before had played.
    virlo::MainLoop::shared().post([weak = weakSelf(*this), sinceLast] {
        const auto self = weak.lock();
        if (self && self->m_videoProgress)
            self->m_videoProgress->setTimerValue(
                std::max(0.0, self->m_videoProgress->timerValue() - sinceLast));
    });
}

void VIRLOAdVideoViewController::viewWillDisappear()
{
    reportClose();
    resetQuartiles(nullptr);
    if (const auto player = currentPlayer()) {
        player->pause();
        player->removeTimeObserver(m_playerTimeObserver);
    }
    m_playerON = false;
    m_playerObservers.clear();
    m_playerTimeObserver.reset();
    m_applicationObservations.clear();
    m_pausedByApplication = false;
    m_videoView->setPlayer(nullptr);
    VIRLOAdViewControllerBase::viewWillDisappear();
}

// Playing

bool VIRLOAdVideoViewController::isPlayerAtEnd() const
{
    const Item item = currentItem();
    // An unknown duration equals no time; without an item both are 0.
    const bool isOver = !item || item->duration() == item->currentTime();
    return isOver || !m_playerON;
}

void VIRLOAdVideoViewController::updatePlaybackState()
{
    if (!isViewLoaded())
        return;
    const Item item = currentItem();
    if (!item || !item->isPlaybackLikelyToKeepUp()) {
        m_activityIndicator->shownInView(view());
        return;
    }
    m_activityIndicator->dismiss();
    if (m_playerON)
        currentPlayer()->play();
}

void VIRLOAdVideoViewController::pause()
{
    m_playerON = false;
    if (const auto player = currentPlayer())
        player->pause();
    reportPause(currentItem());
}

void VIRLOAdVideoViewController::resume()
{
    if (const auto player = currentPlayer())
        player->play();
    m_playerON = true;
    updatePlaybackState();
    reportResume(currentItem());
}

std::vector<virlo::Press> VIRLOAdVideoViewController::handlePresses(const std::vector<virlo::Press>& presses)
{
    const auto player = currentPlayer();
    if (!player)
        return presses;
    std::vector<virlo::Press> others;
    for (const virlo::Press& press : presses) {
        if (press.type == PressType::PlayPause)
            m_playerON ? pause() : resume();
        else if (press.type == PressType::Mute)
            player->setMuted(!player->isMuted());
        else
            others.push_back(press);
    }
    return others;
}

void VIRLOAdVideoViewController::pressesEnded(const std::vector<virlo::Press>& presses)
{
    const auto others = handlePresses(presses);
    if (!others.empty())
        VIRLOAdViewControllerBase::pressesEnded(others);
}

// Notifications of the player

void VIRLOAdVideoViewController::observeValueForKeyPathOfObjectChangeContext(
    const std::string& keyPath, const QueuePlayer*, const QueuePlayer::Change& change, void*)
{
    if (keyPath == QueuePlayer::mutedKeyPath) {
        if (change.newValue != change.oldValue)
            reportMutedPlayer(change.newValue == QueuePlayer::Value(true));
    } else if (keyPath == QueuePlayer::currentItemKeyPath) {
        currentItemDidChange(itemOf(change.oldValue), itemOf(change.newValue));
    } else if (keyPath == QueuePlayer::rateKeyPath) {
        if (change.newValue == QueuePlayer::Value(0.0) && !isPlayerAtEnd() && currentItem())
            updatePlaybackState();
    } else if (keyPath == QueuePlayer::playbackLikelyToKeepUpKeyPath) {
        if (change.oldValue != QueuePlayer::Value(true) || currentItem())
            updatePlaybackState();
    }
}

void VIRLOAdVideoViewController::currentItemDidChange(const Item& before, const Item& now)
{
    if (before) {
        if (before->error())
            VIRLOAdFrameworkLogger::logWarningWithFormat("Video failed: %@", before->error());
        // A video of a second or less has fewer ticks than quartiles, and on a busy machine the progress
        // queue may still have to run: whatever is due at its end is reported before "complete".
        while (!before->error() && reportVideoProgress(before->currentTime().count(), before)) {
        }
        // A video that failed counts as complete, too.
        reportComplete(before);
    }
    resetQuartiles(now);
    if (now)
        reportStart(now);
    else
        closeAd();
}

void VIRLOAdVideoViewController::handleAccessLogEntry(const virlo::PlayerItem& item)
{
    const auto log = item.accessLog();
    if (log.empty())
        return;
    const auto& last = log.back();
    if (last.observedBitrate <= 0 || last.numberOfBytesTransferred < 1)
        return;
    constexpr double bitsPerByte = 8.0;
    VIRLOConnectionQualityMonitor::sharedMonitor()->probeDownload()->registerNumberOfBytesWithDuration(
        last.numberOfBytesTransferred,
        static_cast<double>(last.numberOfBytesTransferred) * bitsPerByte / last.observedBitrate);
}
