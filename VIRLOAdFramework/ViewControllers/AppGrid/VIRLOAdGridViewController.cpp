#include "VIRLOAdGridViewController.h"

#include "Animation.h"
#include "Button.h"
#include "CollectionView.h"
#include "Convert.h"
#include "FocusGuide.h"
#include "FocusUpdateContext.h"
#include "GlobalQueue.h"
#include "GradientView.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "MainLoop.h"
#include "MainScreen.h"
#include "VIRLOAdController.h"
#include "VIRLOAdGridFeaturedView.h"
#include "VIRLOAdGridItemCollectionViewCell.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOAppGridFeaturedImageStore.h"
#include "VIRLOAppGridImageStore.h"
#include "VIRLOFocusLift.h"

#include <QPointer>

#include <utility>

using virlo::GlobalQueue;
using virlo::MainLoop;
using virlo::OptionalError;

namespace
{

constexpr double featuredWidth = 400.0;
constexpr float featuredScale = 1.1F;
constexpr virlo::Seconds featuredDuration{0.8};

} // namespace

VIRLOAdGridViewController::VIRLOAdGridViewController() = default;

VIRLOAdGridViewController::~VIRLOAdGridViewController()
{
    for (const auto& downloader : {m_imgDownloader, m_featuredImgDownloader}) {
        if (downloader)
            downloader->endSession();
    }
}

void VIRLOAdGridViewController::setAd(std::shared_ptr<VIRLOAdvertisement> ad)
{
    // Here and not in a cell: cells are on the main thread, which decodes nothing.
    static_cast<void>(VIRLOAdGridItemCollectionViewCell::placeholderThumbnailImage());
    m_items = ad ? ad->items() : Items();
    VIRLOAdViewControllerBase::setAd(std::move(ad));
}

void VIRLOAdGridViewController::viewDidLoad()
{
    VIRLOAdViewControllerBase::viewDidLoad();
    m_containerView = outlet<virlo::View>("containerView");
    m_gradient = outlet<virlo::GradientView>("gradient");
    m_closeButton = outlet<virlo::Button>("closeButton");
    m_collectionView = outlet<virlo::CollectionView>("collectionView");
    m_featuredImageView = outlet<virlo::ImageView>("featuredImageView");
    m_featuredView = outlet<VIRLOAdGridFeaturedView>("featuredView");
    m_featuredAdActionButton = outlet<virlo::Label>("featuredAdActionButton");
    m_featuredAdActionButtonPositionX = outlet<virlo::LayoutConstraint>("featuredAdActionButtonPositionX");
    m_featuredAdActionButtonPositionY = outlet<virlo::LayoutConstraint>("featuredAdActionButtonPositionY");
    m_featuredAdViewWidth = outlet<virlo::LayoutConstraint>("featuredAdViewWidth");
    m_closeGuide = outlet<virlo::FocusGuide>("closeGuide");
    setUpContainer();

    m_imgDownloader = VIRLOAdServerApiImageDownloader::init();
    m_featuredImgDownloader = VIRLOAdServerApiImageDownloader::init();
    m_collectionView->setDataSource(weakSelf(*this));
    m_collectionView->setDelegate(weakSelf(*this));
    m_collectionView->reloadData();
    GlobalQueue::high().async([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->retrieveFeaturedAd();
    });
}

void VIRLOAdGridViewController::setUpContainer()
{
    m_containerView->setShadowColor(Qt::black);
    m_containerView->setShadowOffset({35.0, 35.0});
    m_containerView->setShadowOpacity(0.5);
    m_containerView->setShadowRadius(10.0);
    m_gradient->setGradient(QColor::fromRgbF(0.91F, 0.95F, 0.95F), QColor::fromRgbF(0.98F, 0.98F, 0.98F),
                            {0, 1}, {1, 0});
    m_featuredAdActionButton->setCornerRadius(10.0);
    m_featuredAdActionButton->setVisible(false);
    m_featuredView->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->featuredItemClick();
    });
    m_closeButton->setPrimaryAction([weak = weakSelf(*this)] {
        if (const auto self = weak.lock())
            self->closeBtn();
    });
    m_closeGuide->setPreferredFocusedView(m_closeButton);
}

// The featured ad

void VIRLOAdGridViewController::retrieveFeaturedAd()
{
    const auto server = api();
    if (!server)
        return;
    const auto show = [weak = weakSelf(*this)](const std::shared_ptr<VIRLOAdvertisement>& ad,
                                               const std::shared_ptr<VIRLOAdItem>& item) {
        GlobalQueue::high().async([weak, ad, item] {
            const QSize size = QSizeF(QSizeF(featuredImage) * virlo::MainScreen::scale()).toSize();
            auto image = VIRLOAppGridFeaturedImageStore::sharedStore()->imageForItemFilling(
                *item, size.width(), size.height());
            MainLoop::shared().post([weak, ad, image = std::move(image)] {
                if (const auto self = weak.lock())
                    self->featuredImageDidLoad(ad, image);
            });
        });
    };
    // Without a session the request waits, maybe for longer than the screen is shown: it holds nothing of it.
    server->retrieveAdvertisementForPlacementOfTypeWithCompletion(
        VIRLOAdController::sharedAdController()->currentPlacement().value_or(""),
        VIRLOAdvertisementType::Featured,
        [weak = weakSelf(*this), show](const std::shared_ptr<VIRLOAdvertisement>& ad, const OptionalError&) {
            const auto self = weak.lock();
            const auto items = ad ? ad->items() : Items();
            if (!self || items.empty())
                return;
            const auto& downloader = self->m_featuredImgDownloader;
            downloader->setImagesStore(VIRLOAppGridFeaturedImageStore::sharedStore());
            downloader->retrieveImageForItemWithCompletion(
                items.front(), [show, ad, item = items.front()](const OptionalError&) { show(ad, item); });
        });
}

void VIRLOAdGridViewController::featuredImageDidLoad(const std::shared_ptr<VIRLOAdvertisement>& ad,
                                                     const std::shared_ptr<const virlo::Image>& image)
{
    if (!image || !presentation())
        return;
    m_featuredAd = ad;
    const auto item = ad->items().front();
    m_featuredImageView->setImage(image);
    m_featuredView->setAccessibleName(virlo::toQString(item->title().value_or("")));
    // Each showing is reported: the item's mark is neither read nor set.
    GlobalQueue::background().async([server = api(), item] {
        if (server)
            server->registerImpressionForItemWithCompletion(*item, [](const OptionalError&) {});
    });
    const auto button = item->actionButton();
    if (!button)
        return;
    m_featuredAdActionButton->setText(virlo::toQString(button->text().value_or("")).simplified());
    m_featuredAdActionButton->setBackgroundColor(virlo::toQColor(button->backgroundColor()));
    m_featuredAdActionButton->setTextColor(virlo::toQColor(button->textColor()));
    m_featuredAdActionButtonPositionX->setConstant(button->xPosition());
    m_featuredAdActionButtonPositionY->setConstant(button->yPosition());
    m_featuredAdViewWidth->setConstant(featuredWidth);
    virlo::Animation::animate(
        featuredDuration,
        [label = m_featuredAdActionButton] {
            label->setTransform(virlo::AffineTransform::scale(featuredScale, featuredScale));
        },
        [weak = weakSelf(*this)](bool) {
            if (const auto self = weak.lock())
                self->m_featuredAdActionButton->setVisible(true);
        });
}

void VIRLOAdGridViewController::featuredItemClick()
{
    if (m_featuredAd)
        openItem(m_featuredAd->items().front());
}

void VIRLOAdGridViewController::closeBtn()
{
    completeAdForViewer();
}

// Focus

virlo::View* VIRLOAdGridViewController::preferredFocusedView()
{
    if (virlo::View* const form = focusOfForm())
        return form;
    virlo::View* const cell = m_collectionView->preferredFocusedView();
    return cell != nullptr ? cell : m_closeButton;
}

void VIRLOAdGridViewController::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    VIRLOAdViewControllerBase::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    const auto takeShape = [&](virlo::View* view, bool focused) {
        if (auto* const cell = qobject_cast<VIRLOAdGridItemCollectionViewCell*>(view))
            coordinator.addCoordinatedAnimations([cell = QPointer(cell), focused] {
                if (cell)
                    cell->takeShape(focused);
            });
    };
    const auto resize = [&](virlo::View* view, bool focused) {
        if (auto* const cell = qobject_cast<VIRLOAdGridCell*>(view))
            coordinator.addCoordinatedAnimations([cell = QPointer(cell), focused] {
                if (cell)
                    cell->resizeWithFocus(focused);
            });
    };
    const auto scaleFeatured = [&](const virlo::View* view, double scale) {
        if (view != nullptr && view == m_featuredView)
            coordinator.addCoordinatedAnimations([label = QPointer(m_featuredAdActionButton), scale] {
                if (label)
                    label->setTransform(virlo::AffineTransform::scale(scale, scale));
            });
    };
    takeShape(context.nextFocusedView, true);
    takeShape(context.previouslyFocusedView, false);
    resize(context.nextFocusedView, true);
    resize(context.previouslyFocusedView, false);
    scaleFeatured(context.nextFocusedView, featuredScale);
    scaleFeatured(context.previouslyFocusedView, 1.0);
    VIRLOFocusLift::grid.apply(context, coordinator);

    // From the grid alone: on the way down from the featured ad, the grid comes next.
    m_closeGuide->setEnabled(qobject_cast<virlo::CollectionViewCell*>(context.nextFocusedView) != nullptr);
    if (isInLastLine(context.nextFocusedView) && !isInLastLine(context.previouslyFocusedView))
        loadMoreItems();
}
