#include "QueuePlayer.h"

#include "PlayerQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace virlo
{

std::shared_ptr<QueuePlayer> QueuePlayer::queuePlayerWithItems(const Items& items)
{
    Items present;
    std::copy_if(items.begin(), items.end(), std::back_inserter(present),
                 [](const auto& item) { return item != nullptr; });
    const auto queue = std::make_shared<PlayerQueue>(std::move(present));
    queue->schedule();
    return std::shared_ptr<QueuePlayer>(new QueuePlayer(queue));
}

QueuePlayer::~QueuePlayer()
{
    m_queue->close();
}

void QueuePlayer::setRate(double rate)
{
    m_queue->setRate(rate);
}

void QueuePlayer::setMuted(bool muted)
{
    m_queue->setMuted(muted);
}

void QueuePlayer::advanceToNextItem()
{
    m_queue->remove(1);
}

void QueuePlayer::removeAllItems()
{
    m_queue->remove(items()->size());
}

void QueuePlayer::preroll(std::function<void(bool)> completion)
{
    m_queue->preroll(std::move(completion));
}

void QueuePlayer::cancelPendingPrerolls()
{
    m_queue->cancelPendingPrerolls();
}

std::shared_ptr<PlayerItem> QueuePlayer::currentItem() const
{
    return m_queue->currentItem();
}

std::shared_ptr<const QueuePlayer::Items> QueuePlayer::items() const
{
    return m_queue->items();
}

double QueuePlayer::rate() const
{
    return m_queue->rate();
}

bool QueuePlayer::isMuted() const
{
    return m_queue->isMuted();
}

Seconds QueuePlayer::currentTime() const
{
    const auto item = currentItem();
    return item ? item->currentTime() : Seconds(0);
}

std::shared_ptr<void> QueuePlayer::addObserverForKeyPath(const std::string& keyPath, Observer observer)
{
    return m_queue->addObserver(keyPath, std::move(observer));
}

std::shared_ptr<void> QueuePlayer::addPeriodicTimeObserver(Seconds interval,
                                                           std::shared_ptr<SerialQueue> queue,
                                                           std::function<void(Seconds)> block)
{
    return m_queue->addTimeObserver(interval, std::move(queue), std::move(block));
}

void QueuePlayer::removeTimeObserver(const std::shared_ptr<void>& token)
{
    m_queue->removeTimeObserver(token);
}

std::shared_ptr<void> QueuePlayer::addFrameObserver(std::function<void()> arrived)
{
    return m_queue->addFrameObserver(std::move(arrived));
}

std::shared_ptr<const VideoFrame> QueuePlayer::takeFrame()
{
    const auto item = currentItem();
    const auto playback = item ? m_queue->playbackOf(*item) : nullptr;
    return playback ? playback->takeFrame() : nullptr;
}

} // namespace virlo
