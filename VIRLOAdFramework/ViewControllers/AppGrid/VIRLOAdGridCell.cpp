#include "VIRLOAdGridCell.h"

#include <utility>

VIRLOAdGridCell::VIRLOAdGridCell(QQuickItem* superview) : CollectionViewCell(superview) {}

VIRLOAdGridCell::~VIRLOAdGridCell()
{
    endUse();
}

void VIRLOAdGridCell::setItem(std::shared_ptr<VIRLOAdItem> item)
{
    endUse();
    m_item = std::move(item);
    m_use = std::make_shared<Use>();
    m_showsItemImage = false;
}

void VIRLOAdGridCell::showItemImage(std::shared_ptr<const virlo::Image> image)
{
    m_showsItemImage = true;
    m_adImageView->setImage(std::move(image));
}

void VIRLOAdGridCell::prepareForReuse()
{
    CollectionViewCell::prepareForReuse();
    showPlaceholderImage();
}

void VIRLOAdGridCell::showPlaceholderImage()
{
    m_adImageView->setImage(nullptr);
}

void VIRLOAdGridCell::endUse()
{
    if (m_use)
        m_use->hasEnded = true;
}
