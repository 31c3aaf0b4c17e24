#include "CollectionView.h"
#include "GlobalQueue.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "MainLoop.h"
#include "MainScreen.h"
#include "StringFormat.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdGridItemCollectionViewCell.h"
#include "VIRLOAdGridRecommendationCollectionViewCell.h"
#include "VIRLOAdGridViewController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOAppGridImageStore.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOScreenText.h"

#include <utility>

using virlo::CollectionView;
using virlo::CollectionViewCell;
using virlo::GlobalQueue;
using virlo::IndexPath;
using virlo::MainLoop;
using virlo::OptionalError;
using VIRLOScreenText::line;

int VIRLOAdGridViewController::collectionViewNumberOfItemsInSection(CollectionView&, int)
{
    return static_cast<int>(m_items.size());
}

CollectionViewCell*
VIRLOAdGridViewController::collectionViewCellForItemAtIndexPath(CollectionView& collection,
                                                                const IndexPath& path)
{
    const auto row = static_cast<std::size_t>(path.row);
    if (row >= m_items.size())
        return collection.dequeueReusableCellWithReuseIdentifierForIndexPath("AdLoadMoreCell", path);
    const auto& item = m_items[row];
    const bool isApp = item->type() == VIRLOAdItemType::AppStore;
    CollectionViewCell* const cell = collection.dequeueReusableCellWithReuseIdentifierForIndexPath(
        isApp ? "AdGridCell" : "AdRecommendationCell", path);
    auto* const contentCell = qobject_cast<VIRLOAdGridCell*>(cell);
    if (contentCell == nullptr)
        return nullptr;
    contentCell->setItem(item);
    if (auto* const appCell = qobject_cast<VIRLOAdGridItemCollectionViewCell*>(cell))
        configureAppLinkCellWithItem(*appCell, *item);
    else if (auto* const recommendation = qobject_cast<VIRLOAdGridRecommendationCollectionViewCell*>(cell))
        configureRecommendationCellWithAdItem(*recommendation, *item);
    readStoredImage(*contentCell, path);
    return cell;
}

void VIRLOAdGridViewController::configureAppLinkCellWithItem(VIRLOAdGridItemCollectionViewCell& cell,
                                                             const VIRLOAdItem& item)
{
    const auto& action = item.actionButton();
    const QString actionText = line(action ? action->text() : std::nullopt);
    cell.titleLabel->setText(line(item.title()));
    cell.actionLabel->setText(VIRLOScreenText::joined(line(item.price()), actionText));
    cell.descriptionLabel->setText(line(item.text()));
    cell.getButton->setText(
        item.currencyAmount() != 0
            ? line(virlo::format("Get %lu %@", item.currencyAmount(), item.currencyType()))
            : actionText);
    cell.setAccessibleName(cell.titleLabel->text());
}

void VIRLOAdGridViewController::configureRecommendationCellWithAdItem(
    VIRLOAdGridRecommendationCollectionViewCell& cell, const VIRLOAdItem& item)
{
    cell.titleLabel->setText(line(item.title()));
    cell.categoryLabel->setText(line(item.category()));
    const auto icon = VIRLOAdGridRecommendationCollectionViewCell::actionIconForItemType(item.type());
    cell.actionIcon->setImage(icon ? VIRLOFrameworkImages::imageNamed(*icon + ".png") : nullptr);
    cell.setAccessibleName(cell.titleLabel->text());
}

void VIRLOAdGridViewController::collectionViewDidSelectItemAtIndexPath(CollectionView&, const IndexPath& path)
{
    if (static_cast<std::size_t>(path.row) < m_items.size())
        openItem(m_items[static_cast<std::size_t>(path.row)]);
}

void VIRLOAdGridViewController::collectionViewWillDisplayCellForItemAtIndexPath(CollectionView& collection,
                                                                                CollectionViewCell& cell,
                                                                                const IndexPath& path)
{
    auto* const contentCell = qobject_cast<VIRLOAdGridCell*>(&cell);
    if (contentCell == nullptr)
        return;
    contentCell->use()->isDisplayed = true;
    downloadImageForItemAtIndexPathInCollectionView(contentCell->item(), path, collection);
    reportImpressionOfItem(contentCell->item());
    if (static_cast<std::size_t>(path.row) + 1 == m_items.size())
        loadMoreItems();
}

// Images

std::shared_ptr<const virlo::Image> VIRLOAdGridViewController::storedImageForItem(const VIRLOAdItem& item)
{
    const auto store = VIRLOAppGridImageStore::sharedStore();
    if (item.type() == VIRLOAdItemType::AppStore)
        return store->thumbnailForItem(item);
    const QSize size = QSizeF(QSizeF(recommendationImage) * virlo::MainScreen::scale()).toSize();
    return store->imageForItemFilling(item, size.width(), size.height());
}

/// Cells are filled before they are displayed, so their image is often there by then.
void VIRLOAdGridViewController::readStoredImage(VIRLOAdGridCell& cell, const IndexPath& path)
{
    const auto& use = cell.use();
    use->isReadingStore = true;
    GlobalQueue::high().async([weak = weakSelf(*this), use, item = cell.item(), path] {
        if (use->hasEnded)
            return;
        const auto image = storedImageForItem(*item);
        MainLoop::shared().post([weak, use, item, path, image] {
            use->isReadingStore = false;
            const auto self = weak.lock();
            if (!self || use->hasEnded)
                return;
            if (image)
                self->showImage(image, item, path);
            else if (use->isDisplayed)
                self->downloadImageForItemAtIndexPathInCollectionView(item, path, *self->m_collectionView);
        });
    });
}

void VIRLOAdGridViewController::downloadImageForItemAtIndexPathInCollectionView(
    const std::shared_ptr<VIRLOAdItem>& item, const IndexPath& path, CollectionView& collection)
{
    const auto* const cell = qobject_cast<VIRLOAdGridCell*>(collection.cellForItemAtIndexPath(path));
    // While the store is read, what has no image there is downloaded after that.
    if (cell == nullptr || cell->item() != item || cell->showsItemImage() || cell->use()->isReadingStore)
        return;
    GlobalQueue::high().async(
        [weak = weakSelf(*this), downloader = m_imgDownloader, use = cell->use(), item, path] {
            if (use->hasEnded)
                return;
            downloader->setImagesStore(VIRLOAppGridImageStore::sharedStore());
            downloader->retrieveImageForItemWithCompletion(item, [weak, item, path](const OptionalError&) {
                if (const auto self = weak.lock())
                    self->updateImageInCellOfCollectionViewAtIndexPathWithItem(path, item);
            });
        });
}

void VIRLOAdGridViewController::updateImageInCellOfCollectionViewAtIndexPathWithItem(
    const IndexPath& path, const std::shared_ptr<VIRLOAdItem>& item)
{
    GlobalQueue::high().async([weak = weakSelf(*this), item, path] {
        auto image = storedImageForItem(*item);
        MainLoop::shared().post([weak, item, path, image = std::move(image)] {
            const auto self = weak.lock();
            if (self && image)
                self->showImage(image, item, path);
        });
    });
}

void VIRLOAdGridViewController::showImage(const std::shared_ptr<const virlo::Image>& image,
                                          const std::shared_ptr<VIRLOAdItem>& item, const IndexPath& path)
{
    auto* const cell = qobject_cast<VIRLOAdGridCell*>(m_collectionView->cellForItemAtIndexPath(path));
    if (cell != nullptr && cell->item() == item)
        cell->showItemImage(image);
}

// More items

void VIRLOAdGridViewController::loadMoreItems()
{
    const auto server = api();
    // Items that have arrived and have no rows yet: this is not the end.
    if (!server || !ad() || ad()->numberOfItems() != m_items.size())
        return;
    if (!ad()->moreItemsURL() || m_loadingAdItems.exchange(true))
        return;
    VIRLOAdFrameworkLogger::logInfoWithFormat("Loading more ad items.");
    GlobalQueue::high().async([weak = weakSelf(*this), server, advertisement = ad()] {
        server->retrieveAdditionalItemsForAdWithCompletion(
            advertisement, [weak](std::size_t, std::size_t count, const OptionalError&) {
                const auto self = weak.lock();
                if (!self)
                    return;
                if (count > 0)
                    MainLoop::shared().post([weak] {
                        if (const auto grid = weak.lock())
                            grid->insertNewItems();
                    });
                self->m_loadingAdItems = false;
            });
    });
}

/// As many rows as the advertisement has items by now: the response may have held what is no item.
void VIRLOAdGridViewController::insertNewItems()
{
    const std::size_t first = m_items.size();
    m_items = ad()->items();
    std::vector<IndexPath> paths;
    for (std::size_t row = first; row < m_items.size(); ++row)
        paths.push_back({.section = 0, .row = static_cast<long>(row)});
    if (isViewLoaded())
        m_collectionView->insertItemsAtIndexPaths(paths);
}

bool VIRLOAdGridViewController::isInLastLine(const virlo::View* view) const
{
    const auto* const cell = qobject_cast<const CollectionViewCell*>(view);
    const CollectionViewCell* const last = m_collectionView->cellForItemAtIndexPath(
        {.section = 0, .row = static_cast<long>(m_items.size()) - 1});
    return cell != nullptr && last != nullptr &&
           cell->mapToItem(m_collectionView, {0, 0}).y() == last->mapToItem(m_collectionView, {0, 0}).y();
}
