pragma ComponentBehavior: Bound
import QtQuick
import Virlo.UI
import VIRLOAdFramework

// An app's page: cover, texts and stars at the top left, the download button at the top right, the screenshots at
// the foot. Without screenshots the texts take the middle of the screen. A long title is set smaller; what is too long
// even so ends in an ellipsis.
View {
    id: screen

    property alias carousel: screenshots
    property alias coverImageView: cover
    property alias actionButton: download
    property alias titleLabel: title
    property alias actionLabel: action
    property alias ratingLabel: rating
    property alias descriptionLabel: description
    property alias shakeOffset: shake

    // The focused screenshot's edges, which the texts keep to as well.
    readonly property real contentLeft: 260
    readonly property real contentWidth: 1400
    readonly property color secondaryText: "#c3cbd9"

    width: 1920
    height: 1080
    backgroundColor: "#0d1018"

    LayoutConstraint { id: shake }

    TextMetrics {
        id: titleWidth
        text: title.text
        font.pixelSize: 54
        font.bold: true
    }

    Item {
        id: page
        x: screen.contentLeft
        y: screenshots.empty ? 300 : 60
        width: screen.contentWidth
        height: screenshots.empty ? 480 : 340

        View {
            id: coverPlace
            width: 150
            height: 150
            cornerRadius: 30
            backgroundColor: "#1d2433"
            visible: !cover.hasImage
        }
        ImageView {
            id: cover
            width: 150
            height: 150
        }

        Label {
            id: title
            x: 184
            y: -6
            width: download.x - x - 64
            height: 68
            fontSize: titleWidth.advanceWidth > width ? 40 : 54
            bold: true
            textColor: "white"
            textAlignment: Qt.AlignLeft | Qt.AlignVCenter
        }
        Label {
            id: action
            x: title.x
            y: 62
            width: title.width
            height: 44
            fontSize: 32
            textColor: screen.secondaryText
            textAlignment: Qt.AlignLeft | Qt.AlignVCenter
        }
        Repeater {
            model: 5
            Image {
                required property int index
                x: title.x + 42 * index
                y: 114
                width: 34
                height: 34
                source: "qrc:/com.virlohq.VIRLOAdFramework/Star34-empty.png"
            }
        }
        Repeater {
            model: 5
            ImageView {
                required property int index
                tag: 980001 + index
                x: title.x + 42 * index
                y: 114
                width: 34
                height: 34
            }
        }
        Label {
            id: rating
            x: title.x + 222
            y: 109
            width: title.width - 222
            height: 44
            fontSize: 30
            textColor: screen.secondaryText
            textAlignment: Qt.AlignLeft | Qt.AlignVCenter
        }

        VIRLOButton {
            id: download
            x: screen.contentWidth - width
            y: 27
            width: Math.min(Math.max(300, implicitWidth + 72), 460)
            height: 96
            cornerRadius: 10
            fontSize: 38
            backgroundColor: "#1660c8"
            titleColor: "white"
            focusRingWidth: 6
            transform: Translate { x: shake.constant }
        }

        Label {
            id: description
            y: 176
            width: screen.contentWidth
            height: page.height - y
            fontSize: 30
            wraps: true
            textAlignment: Qt.AlignTop
            textColor: "#eceff5"
        }
    }

    VIRLOCarousel {
        id: screenshots
        y: 404
        width: screen.width
        height: 651
    }
}
