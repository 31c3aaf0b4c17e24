#include "VIRLOAdInterstitialScreenshots.h"

#include "DispatchGroup.h"
#include "GlobalQueue.h"
#include "Image.h"
#include "MainLoop.h"
#include "MainScreen.h"
#include "VIRLOAdInterstitialImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerApiImageDownloader.h"

#include <algorithm>
#include <cmath>
#include <utility>

using virlo::GlobalQueue;
using virlo::Image;
using virlo::IndexPath;
using virlo::MainLoop;
using virlo::OptionalError;

namespace
{

constexpr std::size_t firstFocused = 2; // the carousel's

IndexPath pathOf(std::size_t index)
{
    return {.section = 0, .row = static_cast<long>(index)};
}

/// The part of the image in the middle that is seen in a normal or in a focused element.
std::shared_ptr<const Image> cropped(const std::shared_ptr<const Image>& image)
{
    const QSizeF normal = VIRLOAdInterstitialScreenshots::elementSize;
    const QSizeF focused = VIRLOAdInterstitialScreenshots::focusedSize;
    const QSize whole(image->width(), image->height());
    const QSize seen(static_cast<int>(std::ceil(whole.height() * normal.width() / normal.height())),
                     static_cast<int>(std::ceil(whole.width() * focused.height() / focused.width())));
    const QSize part = seen.boundedTo(whole);
    if (part == whole || part.isEmpty())
        return image;
    return Image::fromQImage(image->qImage().copy((whole.width() - part.width()) / 2,
                                                  (whole.height() - part.height()) / 2, part.width(),
                                                  part.height()));
}

/// From the store, as large as it is shown; null where the store does not have it. On a worker.
std::shared_ptr<const Image> decoded(const VIRLOAdItem& item, std::size_t index)
{
    const QSizeF pixels = QSizeF(VIRLOAdInterstitialScreenshots::focusedSize) * virlo::MainScreen::scale();
    const auto image = VIRLOAdInterstitialImageStore::sharedStore()->imageForItemAtIndexPathCovering(
        item, pathOf(index), static_cast<int>(std::ceil(pixels.width())),
        static_cast<int>(std::ceil(pixels.height())));
    return image ? cropped(image) : nullptr;
}

} // namespace

std::shared_ptr<VIRLOAdInterstitialScreenshots>
VIRLOAdInterstitialScreenshots::make(std::shared_ptr<VIRLOAdItem> item,
                                     std::shared_ptr<VIRLOAdServerApiImageDownloader> downloader)
{
    return std::shared_ptr<VIRLOAdInterstitialScreenshots>(
        new VIRLOAdInterstitialScreenshots(std::move(item), std::move(downloader)));
}

VIRLOAdInterstitialScreenshots::VIRLOAdInterstitialScreenshots(
    std::shared_ptr<VIRLOAdItem> item, std::shared_ptr<VIRLOAdServerApiImageDownloader> downloader)
    : m_item(std::move(item))
    , m_downloader(std::move(downloader))
    , m_screenshots(m_item ? m_item->screenshotsURLs().size() : 0)
    , m_focused(firstFocused)
{
}

/// Whether the element is the focused one or one of its neighbours, around the ends of the list.
bool VIRLOAdInterstitialScreenshots::isNear(std::size_t index) const
{
    const std::size_t apart = index > m_focused ? index - m_focused : m_focused - index;
    return std::min(apart, count() - std::min(count(), apart)) <= heldOnEitherSide;
}

void VIRLOAdInterstitialScreenshots::preload(virlo::DispatchGroup group)
{
    std::vector<bool> near(count());
    for (std::size_t index = 0; index < count(); ++index) {
        m_screenshots[index].state = State::Downloading;
        near[index] = isNear(index);
        group.enter();
    }
    GlobalQueue::high().async([self = shared_from_this(), group, near = std::move(near)] {
        self->m_downloader->setImagesStore(VIRLOAdInterstitialImageStore::sharedStore());
        for (std::size_t index = 0; index < near.size(); ++index)
            self->preloadOne(index, near[index], group);
    });
}

/// On a worker.
void VIRLOAdInterstitialScreenshots::preloadOne(std::size_t index, bool isNear, virlo::DispatchGroup group)
{
    const auto finish = [self = shared_from_this(), index, isNear, group] {
        const ImagePointer image = isNear ? decoded(*self->m_item, index) : nullptr;
        MainLoop::shared().post([self, index, group, image]() mutable {
            self->m_screenshots[index] = {State::Idle, image};
            if (self->m_show && image)
                self->m_show(index, image);
            self->update();
            group.leave();
        });
    };
    if (VIRLOAdInterstitialImageStore::sharedStore()->hasImageForItemAtIndexPath(*m_item, pathOf(index)))
        GlobalQueue::high().async(finish);
    else
        m_downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(
            m_item, pathOf(index), [finish](const OptionalError&) { GlobalQueue::high().async(finish); });
}

void VIRLOAdInterstitialScreenshots::start(Show show)
{
    m_show = std::move(show);
    for (std::size_t index = 0; index < count(); ++index) {
        if (m_screenshots[index].image)
            m_show(index, m_screenshots[index].image);
    }
    update();
}

void VIRLOAdInterstitialScreenshots::stop()
{
    m_show = nullptr;
    for (Screenshot& screenshot : m_screenshots)
        screenshot.image.reset();
}

void VIRLOAdInterstitialScreenshots::setFocused(std::size_t index)
{
    m_focused = index;
    update();
}

void VIRLOAdInterstitialScreenshots::update()
{
    if (!m_show)
        return;
    for (std::size_t index = 0; index < count(); ++index) {
        Screenshot& screenshot = m_screenshots[index];
        if (screenshot.image && !isNear(index)) {
            screenshot.image.reset();
            m_show(index, nullptr);
        }
    }
    // The focused one first, then its neighbours, then theirs.
    for (std::size_t apart = 0; apart <= heldOnEitherSide && apart < count(); ++apart) {
        load((m_focused + apart) % count());
        load((m_focused + count() - apart) % count());
    }
}

void VIRLOAdInterstitialScreenshots::load(std::size_t index)
{
    Screenshot& screenshot = m_screenshots[index];
    if (screenshot.state != State::Idle || screenshot.image || m_loading == mostLoading)
        return;
    screenshot.state = State::Loading;
    ++m_loading;
    const auto finish = [weak = weak_from_this(), index](const ImagePointer& image) {
        MainLoop::shared().post([weak, index, image] {
            if (const auto self = weak.lock())
                self->didLoad(index, image);
        });
    };
    GlobalQueue::high().async([finish, item = m_item, downloader = m_downloader, index] {
        // The store may hold a body that is no image, from a download that failed.
        if (const ImagePointer image = decoded(*item, index)) {
            finish(image);
            return;
        }
        downloader->setImagesStore(VIRLOAdInterstitialImageStore::sharedStore());
        downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(
            item, pathOf(index), [finish, item, index](const OptionalError&) {
                GlobalQueue::high().async([finish, item, index] { finish(decoded(*item, index)); });
            });
    });
}

void VIRLOAdInterstitialScreenshots::didLoad(std::size_t index, const ImagePointer& image)
{
    --m_loading;
    if (!m_show)
        return;
    Screenshot& screenshot = m_screenshots[index];
    screenshot.state = image ? State::Idle : State::Missing;
    if (image && isNear(index)) {
        screenshot.image = image;
        m_show(index, image);
    }
    update();
}
