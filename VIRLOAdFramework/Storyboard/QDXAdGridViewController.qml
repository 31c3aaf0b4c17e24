import QtQuick
import Virlo.UI
import VIRLOAdFramework

// A shelf of apps and other offers in four columns below a wide featured image. The featured image's button stands
// where the ad says, the close button at the image's upper right corner.
View {
    id: screen

    property alias containerView: container
    property alias gradient: ground
    property alias closeButton: close
    property alias collectionView: collection
    property alias featuredImageView: featuredImage
    property alias featuredView: featured
    property alias featuredAdActionButton: featuredLabel
    property alias featuredAdActionButtonPositionX: featuredX
    property alias featuredAdActionButtonPositionY: featuredY
    property alias featuredAdViewWidth: featuredWidth
    property alias closeGuide: guide

    width: 1920
    height: 1080
    backgroundColor: "#dde6e8"

    LayoutConstraint { id: featuredX }
    LayoutConstraint { id: featuredY }
    LayoutConstraint { id: featuredWidth }

    CollectionView {
        id: collection
        y: container.y + container.height
        width: parent.width
        height: parent.height - y
        leftMargin: 60
        topMargin: 52
        bottomMargin: 60
        columns: 4
        cellWidth: 450
        cellHeight: 398
        cells: ({
            "AdGridCell": appCell,
            "AdRecommendationCell": recommendationCell,
            "AdLoadMoreCell": loadMoreCell
        })
    }
    Component { id: appCell; AdGridCell {} }
    Component { id: recommendationCell; AdRecommendationCell {} }
    Component { id: loadMoreCell; AdLoadMoreCell {} }

    View {
        id: container
        x: 60
        y: 44
        width: 1800
        height: 436

        GradientView {
            id: ground
            anchors.fill: parent
        }
        // What stands there without a featured ad.
        Label {
            x: 60
            width: close.x - x - 60
            height: parent.height
            text: qsTr("More for you")
            fontSize: 76
            bold: true
            textColor: "#14222b"
            visible: !featuredImage.hasImage
        }
        ImageView {
            id: featuredImage
            anchors.fill: parent
        }
        VIRLOAdGridFeaturedView {
            id: featured
            x: Math.max(24, Math.min(featuredX.constant, container.width - width - 24))
            y: Math.max(24, Math.min(featuredY.constant, container.height - height - 24))
            width: featuredWidth.constant
            height: 76

            View {
                anchors.centerIn: parent
                width: parent.width * 1.1 + 20
                height: parent.height * 1.1 + 20
                cornerRadius: 18
                backgroundColor: "#101418"
                visible: featured.focused
            }
            View {
                anchors.centerIn: parent
                width: parent.width * 1.1 + 14
                height: parent.height * 1.1 + 14
                cornerRadius: 16
                backgroundColor: "white"
                visible: featured.focused
            }
            Label {
                id: featuredLabel
                anchors.fill: parent
                fontSize: 34
                bold: true
                textAlignment: Qt.AlignCenter
            }
        }
        VIRLOButton {
            id: close
            x: container.width - width - 32
            y: 32
            width: 190
            height: 76
            title: qsTr("Close")
            fontSize: 34
            cornerRadius: 10
            backgroundColor: "#14222b"
            titleColor: "white"
            focusRingWidth: 6
        }
    }

    // Between the close button and the featured ad, wherever that has its button.
    FocusGuide {
        x: container.x
        y: container.y + close.y
        width: close.x
        height: close.height
        preferredFocusedView: featured
    }
    FocusGuide {
        x: container.x + featured.x + featured.width
        y: container.y + featured.y
        width: container.width - featured.x - featured.width
        height: featured.height
        preferredFocusedView: close
    }
    FocusGuide {
        id: guide
        x: collection.x
        y: collection.y + collection.topMargin - 6
        width: collection.width
        height: 5
    }
}
