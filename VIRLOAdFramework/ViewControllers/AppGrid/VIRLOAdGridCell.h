#pragma once

#include "CollectionViewCell.h"
#include "ImageView.h"
#include "KSTVResizableGridItem.h"

#include <atomic>
#include <memory>

class VIRLOAdItem;

/// What the two cells that show an item have in common: the item, and an image that arrives later. Main
/// thread.
class VIRLOAdGridCell : public virlo::CollectionViewCell, public KSTVResizableGridItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(virlo::ImageView* adImageView MEMBER m_adImageView FINAL)

public:
    /// The time in which a cell shows one item. What loads the image looks at it, so that nothing is decoded
    /// or downloaded for an item that has scrolled away.
    struct Use {
        std::atomic<bool> hasEnded{false};
        bool isReadingStore = false; ///< main thread
        bool isDisplayed = false;    ///< main thread
    };

    explicit VIRLOAdGridCell(QQuickItem* superview = nullptr);
    ~VIRLOAdGridCell() override;

    [[nodiscard]] const std::shared_ptr<VIRLOAdItem>& item() const noexcept { return m_item; }

    /// Begins a use.
    void setItem(std::shared_ptr<VIRLOAdItem> item);

    [[nodiscard]] const std::shared_ptr<Use>& use() const noexcept { return m_use; }

    /// Whether the item's own image is shown.
    [[nodiscard]] bool showsItemImage() const noexcept { return m_showsItemImage; }

    void showItemImage(std::shared_ptr<const virlo::Image> image);

    void prepareForReuse() override;

protected:
    [[nodiscard]] virlo::ImageView* adImageView() const noexcept { return m_adImageView; }

    /// What is shown until the item's image is there.
    virtual void showPlaceholderImage();

private:
    void endUse();

    virlo::ImageView* m_adImageView = nullptr;
    std::shared_ptr<VIRLOAdItem> m_item;
    std::shared_ptr<Use> m_use;
    bool m_showsItemImage = false;
};
