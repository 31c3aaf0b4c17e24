#include "VIRLOAdGridRecommendationCollectionViewCell.h"

#include "Label.h"
#include "LayoutConstraint.h"

VIRLOAdGridRecommendationCollectionViewCell::VIRLOAdGridRecommendationCollectionViewCell(
    QQuickItem* superview)
    : VIRLOAdGridCell(superview)
{
}

std::optional<std::string>
VIRLOAdGridRecommendationCollectionViewCell::actionIconForItemType(VIRLOAdItemType type)
{
    switch (type) {
    case VIRLOAdItemType::Content:
        return "AdGridPlay";
    case VIRLOAdItemType::Email:
        return "AdGridMail";
    case VIRLOAdItemType::Call:
        return "AdGridPhone";
    case VIRLOAdItemType::SMS:
        return "AdGridSMS";
    default:
        return std::nullopt;
    }
}

void VIRLOAdGridRecommendationCollectionViewCell::componentComplete()
{
    VIRLOAdGridCell::componentComplete();
    // Top, leading and trailing edge of the image equal to the focused frame's, each with constant 0.
    for (int edge = 0; edge < 3; ++edge)
        m_focusedConstraints.push_back(new virlo::LayoutConstraint(this));
    resizeWithFocus(false);
}

VIRLOAdGridRecommendationCollectionViewCell::Constraints
VIRLOAdGridRecommendationCollectionViewCell::unfocusedConstraints() const
{
    return {imageTopMarginConstraint, imageRightMarginConstraint, imageLeftMarginConstraint};
}

void VIRLOAdGridRecommendationCollectionViewCell::resizeWithFocus(bool focused)
{
    labelsLeftMarginConstraint->setConstant(focused ? 0.0 : 24.0);
    labelsRightMarginConstraint->setConstant(focused ? 0.0 : -24.0);
    for (virlo::LayoutConstraint* const constraint : focused ? unfocusedConstraints() : focusedConstraints())
        constraint->setActive(false);
    for (virlo::LayoutConstraint* const constraint : focused ? focusedConstraints() : unfocusedConstraints())
        constraint->setActive(true);
}
