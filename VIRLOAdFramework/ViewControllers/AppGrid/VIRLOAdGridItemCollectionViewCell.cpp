#include "VIRLOAdGridItemCollectionViewCell.h"

#include "Image.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLORoundedCorners.h"

#include <atomic>

namespace
{

struct Shape {
    double imageScale;
    double leftMargin;
    double titleTop;
    double subtitleTop;
    double buttonWidth;
    double buttonHeight;
    double buttonBottom;
    QRectF exclusion; ///< of the description, for the icon
};

const Shape atRest{1.0, 40.0, 30.0, 7.0, 363.0, 53.0, 30.0, {224.0, 0, 160.0, 70.0}};
const Shape inFocus{1.15, 20.0, 10.0, 12.0, 398.0, 58.0, 0.0, {234.0, 0, 184.0, 80.5}};

std::atomic<bool> placeholderIsMade{false};

} // namespace

VIRLOAdGridItemCollectionViewCell::VIRLOAdGridItemCollectionViewCell(QQuickItem* superview)
    : VIRLOAdGridCell(superview)
{
}

std::shared_ptr<const virlo::Image> VIRLOAdGridItemCollectionViewCell::placeholderThumbnailImage()
{
    // Never destroyed: a worker may still use it while the process exits.
    static const auto& placeholder = *new std::shared_ptr<const virlo::Image>([] {
        const auto image = VIRLOFrameworkImages::imageNamed("AdGridAppStore.png");
        return image ? VIRLORoundedCorners::VIRLO_thumbnailWithRoundedCorners(*image) : nullptr;
    }());
    placeholderIsMade = true;
    return placeholder;
}

void VIRLOAdGridItemCollectionViewCell::showPlaceholderImage()
{
    adImageView()->setImage(placeholderIsMade ? placeholderThumbnailImage() : nullptr);
}

void VIRLOAdGridItemCollectionViewCell::componentComplete()
{
    VIRLOAdGridCell::componentComplete();
    virlo::ImageView& image = *adImageView();
    image.setCornerRadius(20.0); // the shadow's
    image.setRoundsImage(false);
    image.setShadowColor(Qt::black);
    image.setShadowOpacity(0.35);
    image.setShadowOffset({10.0, 10.0});
    image.setShadowRadius(20.0);
    takeShape(false);
    showPlaceholderImage();
}

void VIRLOAdGridItemCollectionViewCell::takeShape(bool focused)
{
    const Shape& shape = focused ? inFocus : atRest;
    adImageView()->setTransform(virlo::AffineTransform::scale(shape.imageScale, shape.imageScale));
    leftMarginConstraint->setConstant(shape.leftMargin);
    titleMarginTopConstraint->setConstant(shape.titleTop);
    subtitleMarginTopConstraint->setConstant(shape.subtitleTop);
    downloadBtnWidthConstraint->setConstant(shape.buttonWidth);
    downloadBtnHeightConstraint->setConstant(shape.buttonHeight);
    downloadBtnMarginBottomConstraint->setConstant(shape.buttonBottom);
    descriptionLabel->setExclusion(shape.exclusion);
}
