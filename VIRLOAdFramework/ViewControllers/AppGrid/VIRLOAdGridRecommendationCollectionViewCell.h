#pragma once

#include "VIRLOAdGridCell.h"
#include "VIRLOAdItem.h"

#include <optional>
#include <string>
#include <vector>

namespace virlo
{
class Label;
class LayoutConstraint;
} // namespace virlo

/// The cell of content or of a way to be contacted: image, title, category and an icon of what Select does.
/// The outlets are set by its document (AdRecommendationCell.qml). Main thread.
class VIRLOAdGridRecommendationCollectionViewCell : public VIRLOAdGridCell
{
    Q_OBJECT
    Q_MOC_INCLUDE("Label.h")
    Q_MOC_INCLUDE("LayoutConstraint.h")
    QML_ELEMENT
    Q_PROPERTY(virlo::Label* titleLabel MEMBER titleLabel FINAL)
    Q_PROPERTY(virlo::Label* categoryLabel MEMBER categoryLabel FINAL)
    Q_PROPERTY(virlo::ImageView* actionIcon MEMBER actionIcon FINAL)
    Q_PROPERTY(virlo::View* backgroundImageView MEMBER backgroundImageView FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* labelsLeftMarginConstraint MEMBER labelsLeftMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* labelsRightMarginConstraint MEMBER labelsRightMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* imageTopMarginConstraint MEMBER imageTopMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* imageRightMarginConstraint MEMBER imageRightMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* imageLeftMarginConstraint MEMBER imageLeftMarginConstraint FINAL)

public:
    explicit VIRLOAdGridRecommendationCollectionViewCell(QQuickItem* superview = nullptr);

    /// The name of an image of the framework's bundle; nothing for other types.
    [[nodiscard]] static std::optional<std::string> actionIconForItemType(VIRLOAdItemType type);

    void resizeWithFocus(bool focused) override;

    using Constraints = std::vector<virlo::LayoutConstraint*>;

    /// In force while the cell has the focus: its image reaches the edges of the cell.
    [[nodiscard]] const Constraints& focusedConstraints() const noexcept { return m_focusedConstraints; }

    /// In force otherwise: the image's top, right and left margins.
    [[nodiscard]] Constraints unfocusedConstraints() const;

    virlo::Label* titleLabel = nullptr;
    virlo::Label* categoryLabel = nullptr;
    virlo::ImageView* actionIcon = nullptr;
    virlo::View* backgroundImageView = nullptr;
    virlo::LayoutConstraint* labelsLeftMarginConstraint = nullptr;
    virlo::LayoutConstraint* labelsRightMarginConstraint = nullptr;
    virlo::LayoutConstraint* imageTopMarginConstraint = nullptr;
    virlo::LayoutConstraint* imageRightMarginConstraint = nullptr;
    virlo::LayoutConstraint* imageLeftMarginConstraint = nullptr;

protected:
    void componentComplete() override;

private:
    Constraints m_focusedConstraints;
};
