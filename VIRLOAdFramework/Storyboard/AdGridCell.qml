import QtQuick
import Virlo.UI
import VIRLOAdFramework

// The card of an app. Its margins are the constraints: with the focus the card grows to the whole cell.
VIRLOAdGridItemCollectionViewCell {
    id: cell

    readonly property real inset: (leftMargin.constant - 20) / 2
    readonly property bool enlarged: focused

    width: 443
    height: 398

    titleLabel: title
    actionLabel: action
    descriptionLabel: description
    getButton: download
    adImageView: icon
    leftMarginConstraint: leftMargin
    rightMarginConstraint: rightMargin
    titleMarginTopConstraint: titleTop
    subtitleMarginTopConstraint: subtitleTop
    descriptionMarginTopConstraint: descriptionTop
    downloadBtnWidthConstraint: downloadWidth
    downloadBtnHeightConstraint: downloadHeight
    downloadBtnMarginBottomConstraint: downloadBottom

    LayoutConstraint { id: leftMargin }
    LayoutConstraint { id: rightMargin; constant: 23 }
    LayoutConstraint { id: titleTop }
    LayoutConstraint { id: subtitleTop }
    LayoutConstraint { id: descriptionTop; constant: 8 }
    LayoutConstraint { id: downloadWidth }
    LayoutConstraint { id: downloadHeight }
    LayoutConstraint { id: downloadBottom }

    AdGridCard {
        inset: cell.inset
        highlighted: cell.focused
    }

    Label {
        id: title
        x: leftMargin.constant
        y: 12 + titleTop.constant
        width: 224
        height: 42
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
        id: action
        x: leftMargin.constant
        y: title.y + title.height + subtitleTop.constant
        width: 224
        height: 38
        fontSize: 28
        textColor: "#3c4f5a"
    }
    Label {
        id: description
        x: leftMargin.constant
        y: action.y + action.height + descriptionTop.constant
        // Not the animated sizes: the text is laid out once for each shape.
        width: cell.enlarged ? 398 : 363
        height: cell.enlarged ? 184 : 148
        fontSize: 28
        wraps: true
        textAlignment: Qt.AlignTop
        textColor: "#26363f"
    }
    ImageView {
        id: icon
        x: parent.width - width - rightMargin.constant
        y: 26
        width: 150
        height: 150
    }
    Rectangle {
        anchors.fill: download
        radius: 10
        color: "#1660c8"
    }
    Label {
        id: download
        x: (parent.width - width) / 2
        y: parent.height - 18 - downloadBottom.constant - height
        width: downloadWidth.constant
        height: downloadHeight.constant
        fontSize: 30
        bold: true
        textColor: "white"
        textAlignment: Qt.AlignCenter
    }
}
