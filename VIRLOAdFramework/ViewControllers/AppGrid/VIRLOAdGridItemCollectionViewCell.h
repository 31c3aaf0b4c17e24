#pragma once

#include "VIRLOAdGridCell.h"

#include <QRectF>

namespace virlo
{
class Label;
class LayoutConstraint;
} // namespace virlo

/// The cell of an app: icon, title, price, description and the look of a download button. The outlets are set
/// by its document (AdGridCell.qml). Main thread.
class VIRLOAdGridItemCollectionViewCell : public VIRLOAdGridCell
{
    Q_OBJECT
    Q_MOC_INCLUDE("Label.h")
    Q_MOC_INCLUDE("LayoutConstraint.h")
    QML_ELEMENT
    Q_PROPERTY(virlo::Label* titleLabel MEMBER titleLabel FINAL)
    Q_PROPERTY(virlo::Label* actionLabel MEMBER actionLabel FINAL)
    Q_PROPERTY(virlo::Label* descriptionLabel MEMBER descriptionLabel FINAL)
    Q_PROPERTY(virlo::Label* getButton MEMBER getButton FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* leftMarginConstraint MEMBER leftMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* rightMarginConstraint MEMBER rightMarginConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* titleMarginTopConstraint MEMBER titleMarginTopConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* subtitleMarginTopConstraint MEMBER subtitleMarginTopConstraint FINAL)
    Q_PROPERTY(
        virlo::LayoutConstraint* descriptionMarginTopConstraint MEMBER descriptionMarginTopConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* downloadBtnWidthConstraint MEMBER downloadBtnWidthConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* downloadBtnHeightConstraint MEMBER downloadBtnHeightConstraint FINAL)
    Q_PROPERTY(virlo::LayoutConstraint* downloadBtnMarginBottomConstraint MEMBER
                   downloadBtnMarginBottomConstraint FINAL)

public:
    explicit VIRLOAdGridItemCollectionViewCell(QQuickItem* superview = nullptr);

    /// "AdGridAppStore.png" with rounded corners, made once for the process. Making it decodes: the first
    /// call is a worker's.
    [[nodiscard]] static std::shared_ptr<const virlo::Image> placeholderThumbnailImage();

    void showPlaceholderImage() override;

    /// Nothing: the screen gives this cell its two shapes, in the animations of the focus.
    void resizeWithFocus(bool) override {}

    /// The two shapes: constraints, icon and the room that the description leaves for it.
    void takeShape(bool focused);

    virlo::Label* titleLabel = nullptr;
    virlo::Label* actionLabel = nullptr;
    virlo::Label* descriptionLabel = nullptr;
    virlo::Label* getButton = nullptr; ///< has neither focus nor presses: they are the cell's
    virlo::LayoutConstraint* leftMarginConstraint = nullptr;
    virlo::LayoutConstraint* rightMarginConstraint = nullptr;
    virlo::LayoutConstraint* titleMarginTopConstraint = nullptr;
    virlo::LayoutConstraint* subtitleMarginTopConstraint = nullptr;
    virlo::LayoutConstraint* descriptionMarginTopConstraint = nullptr;
    virlo::LayoutConstraint* downloadBtnWidthConstraint = nullptr;
    virlo::LayoutConstraint* downloadBtnHeightConstraint = nullptr;
    virlo::LayoutConstraint* downloadBtnMarginBottomConstraint = nullptr;

protected:
    void componentComplete() override;
};
