#pragma once

#include "CollectionViewProtocols.h"
#include "VIRLOAdViewControllerBase.h"

#include <QSize>

#include <atomic>
#include <memory>
#include <vector>

class VIRLOAdGridCell;
class VIRLOAdGridFeaturedView;
class VIRLOAdGridItemCollectionViewCell;
class VIRLOAdGridRecommendationCollectionViewCell;
class VIRLOAdServerApiImageDownloader;

namespace virlo
{
class Button;
class FocusGuide;
class GradientView;
class Image;
class ImageView;
class Label;
class LayoutConstraint;
} // namespace virlo

/// A featured ad above a grid of the advertisement's items, which grows page by page as the viewer nears its
/// end. Scene: "QDXAdGridViewController". There is no preload: images and the featured ad arrive while it is
/// shown.
///
/// Decoded images in memory are those of the cells that exist (see CollectionView): at most `mostCells`, each
/// with one of 150 × 150 points or, for a recommendation, of `recommendationImage`, beside the featured image
/// and what the image stores hold. All are read and decoded by workers.
///
/// First focus: the first cell. Up out of the grid leads to the close button, left of which is the featured
/// ad. Back: Menu, at any time.
class VIRLOAdGridViewController : public VIRLOAdViewControllerBase,
                                  public virlo::CollectionViewDataSource,
                                  public virlo::CollectionViewDelegate
{
public:
    /// Two lines that can be seen, one cut off, and one on either side.
    static constexpr int mostCells = 24;
    /// In points: as large as they are shown, a recommendation's without the focus.
    static constexpr QSize recommendationImage{423, 238};
    static constexpr QSize featuredImage{1800, 436};

    VIRLOAdGridViewController();
    ~VIRLOAdGridViewController() override;

    void setAd(std::shared_ptr<VIRLOAdvertisement> ad) override;

    /// Null until it has arrived.
    [[nodiscard]] const std::shared_ptr<VIRLOAdvertisement>& featuredAd() const noexcept
    {
        return m_featuredAd;
    }

    /// True while a request for more items is under way.
    [[nodiscard]] bool loadingAdItems() const noexcept { return m_loadingAdItems; }

    /// Requests the featured ad for the current placement, shows it once its image is there and reports its
    /// impression. Any thread.
    void retrieveFeaturedAd();
    /// Opens the featured ad's item.
    void featuredItemClick();
    /// Ends the ad by `adCompleted`. Unlike Menu it looks for no rewards.
    void closeBtn();

    // The collection
    [[nodiscard]] int collectionViewNumberOfItemsInSection(virlo::CollectionView& collection,
                                                           int section) override;
    [[nodiscard]] virlo::CollectionViewCell*
    collectionViewCellForItemAtIndexPath(virlo::CollectionView& collection,
                                         const virlo::IndexPath& path) override;
    void collectionViewDidSelectItemAtIndexPath(virlo::CollectionView& collection,
                                                const virlo::IndexPath& path) override;
    void collectionViewWillDisplayCellForItemAtIndexPath(virlo::CollectionView& collection,
                                                         virlo::CollectionViewCell& cell,
                                                         const virlo::IndexPath& path) override;
    void configureAppLinkCellWithItem(VIRLOAdGridItemCollectionViewCell& cell, const VIRLOAdItem& item);
    void configureRecommendationCellWithAdItem(VIRLOAdGridRecommendationCollectionViewCell& cell,
                                               const VIRLOAdItem& item);

    /// Downloads the image of the item that the cell at the path shows, unless the store has it.
    void downloadImageForItemAtIndexPathInCollectionView(const std::shared_ptr<VIRLOAdItem>& item,
                                                         const virlo::IndexPath& path,
                                                         virlo::CollectionView& collection);
    /// Reads the image from the store and shows it, if the cell at the path still shows the item. Any thread.
    void updateImageInCellOfCollectionViewAtIndexPathWithItem(const virlo::IndexPath& path,
                                                              const std::shared_ptr<VIRLOAdItem>& item);
    /// From the app-grid store, as large as it is shown: an app's thumbnail, the image of any other item.
    /// Null where there is none. On a worker.
    [[nodiscard]] static std::shared_ptr<const virlo::Image> storedImageForItem(const VIRLOAdItem& item);

    [[nodiscard]] virlo::View* preferredFocusedView() override;
    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;

protected:
    void viewDidLoad() override;

private:
    using Items = std::vector<std::shared_ptr<VIRLOAdItem>>;

    void setUpContainer();
    void featuredImageDidLoad(const std::shared_ptr<VIRLOAdvertisement>& ad,
                              const std::shared_ptr<const virlo::Image>& image);
    void readStoredImage(VIRLOAdGridCell& cell, const virlo::IndexPath& path);
    void showImage(const std::shared_ptr<const virlo::Image>& image, const std::shared_ptr<VIRLOAdItem>& item,
                   const virlo::IndexPath& path);
    void loadMoreItems();
    void insertNewItems();
    [[nodiscard]] bool isInLastLine(const virlo::View* view) const;

    Items m_items; ///< of the rows: what the advertisement had when they were inserted
    std::shared_ptr<VIRLOAdvertisement> m_featuredAd;
    std::shared_ptr<VIRLOAdServerApiImageDownloader> m_imgDownloader;
    std::shared_ptr<VIRLOAdServerApiImageDownloader> m_featuredImgDownloader;
    std::atomic<bool> m_loadingAdItems{false};
    // Of the scene, which lives as long as this controller.
    virlo::View* m_containerView = nullptr;
    virlo::GradientView* m_gradient = nullptr;
    virlo::Button* m_closeButton = nullptr;
    virlo::CollectionView* m_collectionView = nullptr;
    virlo::ImageView* m_featuredImageView = nullptr;
    VIRLOAdGridFeaturedView* m_featuredView = nullptr;
    virlo::Label* m_featuredAdActionButton = nullptr;
    virlo::LayoutConstraint* m_featuredAdActionButtonPositionX = nullptr;
    virlo::LayoutConstraint* m_featuredAdActionButtonPositionY = nullptr;
    virlo::LayoutConstraint* m_featuredAdViewWidth = nullptr;
    virlo::FocusGuide* m_closeGuide = nullptr;
};
