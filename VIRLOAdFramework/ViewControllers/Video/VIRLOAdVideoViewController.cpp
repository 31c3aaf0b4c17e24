#include "VIRLOAdVideoViewController.h"

#include "GlobalQueue.h"
#include "MainLoop.h"
#include "MediaEngine.h"
#include "PaintedImageView.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdVideoView.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOTimerProgress.h"
#include "VIRLOVASTAd.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTXMLParser.h"
#include "WindowPresentation.h"

#include <algorithm>
#include <utility>

using virlo::GlobalQueue;
using virlo::MainLoop;
using virlo::MediaEngine;
using virlo::OptionalError;
using virlo::PlayerItem;
using virlo::QueuePlayer;

namespace
{

constexpr virlo::Seconds pollInterval{1};
constexpr double ringSize = 99.0;
constexpr double ringMargin = 75.0;
constexpr double haloSize = 160.0;

} // namespace

const char* const VIRLOAdVideoViewController::kVideoProgressNotifications =
    "com.virlohq.VIRLOAdVideoViewControllerProgress";

// Preloading

void VIRLOAdVideoViewController::preloadAdElementsWithCompletion(Completion completion)
{
    const auto items = ad() ? ad()->items() : VIRLOAdvertisement::Items();
    if (items.empty()) {
        // Deliberate: hosts know this message as the error's domain.
        GlobalQueue::high().async([completion = std::move(completion)] {
            completion(virlo::Error{"The ad does not contain any item."});
        });
        return;
    }
    // Sets GStreamer up while the document is fetched.
    GlobalQueue::standard().async([] { MediaEngine::shared().prepare(); });
    const auto parser = VIRLOVASTXMLParser::initWithVASTURL(items.front()->markupURL());
    parser->setOwner(weakSelf(*this));
    parser->setCompletionHandler(
        [weak = weakSelf(*this), completion = std::move(completion)](auto ads, const OptionalError& error) {
            if (error) {
                completion(error);
                return;
            }
            const auto self = weak.lock();
            if (!self)
                return;
            if (ads)
                self->m_videoAds = std::move(*ads);
            // Made here, since that may read the disk and the player is built on the main thread.
            static_cast<void>(MediaEngine::shared());
            self->awaitFirstItem(completion);
        });
    parser->parse();
}

void VIRLOAdVideoViewController::awaitFirstItem(Completion completion)
{
    // Weakly: without a limit, as is deliberate, but only as long as somebody waits for the screen.
    MainLoop::shared().post([weak = weakSelf(*this), completion = std::move(completion)]() mutable {
        const auto self = weak.lock();
        if (!self)
            return;
        const auto player = self->videoPlayer();
        const bool hasItem = player && !player->items()->empty();
        GlobalQueue::standard().async([weak, hasItem, completion = std::move(completion)]() mutable {
            if (hasItem) {
                completion(std::nullopt);
                return;
            }
            VIRLOAdFrameworkLogger::logInfoWithFormat("Preloading video...");
            GlobalQueue::standard().after(pollInterval, [weak, completion = std::move(completion)] {
                if (const auto waiting = weak.lock())
                    waiting->awaitFirstItem(completion);
            });
        });
    });
}

std::shared_ptr<QueuePlayer> VIRLOAdVideoViewController::videoPlayer()
{
    loadViewIfNeeded();
    return m_videoView->player();
}

const VIRLOTimerProgress& VIRLOAdVideoViewController::videoProgress() const
{
    return *m_videoProgress;
}

// The view and the player

std::unique_ptr<virlo::View> VIRLOAdVideoViewController::loadView()
{
    auto view = std::make_unique<VIRLOAdVideoView>();
    m_videoView = view.get();
    m_activityIndicator = virlo::View::make<VIRLOActivityIndicator>();
    // Keeps the ring and its number readable on any frame.
    auto* const halo = new virlo::PaintedImageView(view.get());
    halo->setImage(VIRLOFrameworkImages::imageNamed("countdown_halo.png"));
    m_videoProgress = new VIRLOTimerProgress(view.get());
    constexpr double haloMargin = ringMargin - (haloSize - ringSize) / 2;
    view->pinToLowerLeadingCorner(*halo, {haloSize, haloSize}, haloMargin);
    view->pinToLowerLeadingCorner(*m_videoProgress, {ringSize, ringSize}, ringMargin);
    return view;
}

void VIRLOAdVideoViewController::viewDidLoad()
{
    VIRLOAdViewControllerBase::viewDidLoad();
    m_videoProgressNotifications = std::make_shared<virlo::SerialQueue>(kVideoProgressNotifications);
    buildPlayer();
}

void VIRLOAdVideoViewController::buildPlayer()
{
    QueuePlayer::Items items;
    double total = 0;
    if (!m_videoAds.empty()) {
        for (const auto& creative : m_videoAds.front()->creatives()) {
            if (auto item = makeItem(*creative)) {
                items.push_back(std::move(item));
                total += creative->duration();
            }
        }
    }
    m_videoProgress->setInitialTimerValue(total);
    if (items.empty())
        return;
    auto player = QueuePlayer::queuePlayerWithItems(items);
    m_player = player;
    m_videoItems = player->items();
    m_videoView->setPlayer(std::move(player));
}

VIRLOAdVideoViewController::Item VIRLOAdVideoViewController::makeItem(const VIRLOVASTCreative& creative)
{
    const auto file =
        creative.mediaFiles() ? bestMEdiaFileForCurrentViewFromCollection(*creative.mediaFiles()) : nullptr;
    auto item = file && file->url() ? PlayerItem::playerItemWithURL(*file->url()) : nullptr;
    if (!item)
        return nullptr;
    m_accessLogObservations.push_back(virlo::NotificationCenter::defaultCenter().addObserver(
        PlayerItem::newAccessLogEntryNotification,
        [weak = weakSelf(*this), posting = std::weak_ptr(item)](const virlo::Notification&) {
            const auto self = weak.lock();
            const auto strongItem = posting.lock();
            if (self && strongItem)
                self->handleAccessLogEntry(*strongItem);
        },
        item.get()));
    return item;
}

VIRLOAdVideoViewController::MediaFile VIRLOAdVideoViewController::bestMEdiaFileForCurrentViewFromCollection(
    const VIRLOVASTCreative::MediaFiles& files)
{
    MediaFile best;
    std::uint64_t bestRating = 0;
    for (const auto& file : files) {
        // In points, whatever the window's size.
        if (static_cast<double>(file->width()) == double{virlo::WindowPresentation::canvasWidth})
            return file;
        if (file->qualityRating() > bestRating) {
            best = file;
            bestRating = file->qualityRating();
        }
    }
    return best;
}

std::shared_ptr<VIRLOVASTCreative> VIRLOAdVideoViewController::creativeForPlayerItem(const Item& item) const
{
    if (!item || m_videoAds.empty())
        return nullptr;
    // Deliberate: by index in the queue, also where an earlier creative had nothing to play and the report
    // goes to that one's URLs; and index 0 once the list is gone.
    std::size_t index = 0;
    if (const auto items = m_videoItems.lock()) {
        const auto found = std::find(items->begin(), items->end(), item);
        if (found == items->end())
            return nullptr;
        index = static_cast<std::size_t>(found - items->begin());
    }
    const auto& creatives = m_videoAds.front()->creatives();
    return index < creatives.size() ? creatives[index] : nullptr;
}
