import QtQuick
import Virlo.UI
import VIRLOAdFramework

// The card of content or of a contact: the image from edge to edge, its title and what Select does below.
VIRLOAdGridRecommendationCollectionViewCell {
    id: cell

    width: 443
    height: 398

    titleLabel: title
    categoryLabel: category
    actionIcon: icon
    adImageView: image
    backgroundImageView: ground
    labelsLeftMarginConstraint: labelsLeft
    labelsRightMarginConstraint: labelsRight
    imageTopMarginConstraint: imageTop
    imageRightMarginConstraint: imageRight
    imageLeftMarginConstraint: imageLeft

    LayoutConstraint { id: labelsLeft }
    LayoutConstraint { id: labelsRight }
    LayoutConstraint { id: imageTop; constant: 10 }
    LayoutConstraint { id: imageRight; constant: 10 }
    LayoutConstraint { id: imageLeft; constant: 10 }

    View {
        id: ground
        anchors.fill: parent

        AdGridCard {
            inset: imageLeft.constant
            highlighted: cell.focused
        }
    }
    View {
        anchors.fill: image
        cornerRadius: 18
        backgroundColor: "#c9d6da"
        visible: !image.hasImage
    }
    ImageView {
        id: image
        x: imageLeft.constant
        y: imageTop.constant
        width: parent.width - x - imageRight.constant
        height: 238 + (10 - imageTop.constant)
        contentMode: ImageView.AspectFill
        cornerRadius: 18
    }
    ImageView {
        id: icon
        x: parent.width - width - 20 + labelsRight.constant
        y: title.y + 15
        width: hasImage ? 56 : 0
        height: 56
        contentMode: ImageView.AspectFit
    }
    Label {
        id: title
        x: 20 + labelsLeft.constant
        y: image.y + image.height + 14
        width: icon.x - x - 12
        height: 44
        fontSize: titleWidth.advanceWidth > width ? 28 : 34
        bold: true
        textColor: "#14222b"
    }
    TextMetrics {
        id: titleWidth
        text: title.text
        font.pixelSize: 34
        font.bold: true
    }
    Label {
        id: category
        x: title.x
        y: title.y + title.height + 4
        width: title.width
        height: 38
        fontSize: 28
        textColor: "#3c4f5a"
    }
}
