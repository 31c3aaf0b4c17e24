import QtQuick
import Virlo.UI
import VIRLOAdFramework

// One full-screen image, the action button where the ad says, the countdown in the lower left corner.
View {
    id: screen

    property alias backgroundImage: background
    property alias closeButton: countdown
    property alias closeButtonHalo: halo
    property alias activityIndicator: wheel
    property alias actionButton: action
    property alias actionButtonPositionX: actionLeft
    property alias actionButtonPositionY: actionTop

    readonly property real safeMargin: 60
    readonly property bool dark: countdown.progressTintColor.hslLightness < 0.5
    readonly property color ink: dark ? "#101010" : "#ffffff"
    readonly property color paper: dark ? "#f4f4f4" : "#101010"

    width: 1920
    height: 1080
    backgroundColor: "black"

    LayoutConstraint { id: actionLeft }
    LayoutConstraint { id: actionTop }

    ImageView {
        id: background
        anchors.fill: parent
        contentMode: ImageView.AspectFill
    }

    ActivityIndicatorView {
        id: wheel
        anchors.centerIn: parent
    }

    FocusGuide {
        preferredFocusedView: countdown
        x: countdown.x
        width: countdown.width
        height: screen.height
    }
    FocusGuide {
        preferredFocusedView: countdown
        y: countdown.y
        width: screen.width
        height: countdown.height
    }
    FocusGuide {
        preferredFocusedView: action
        y: action.y
        width: screen.width
        height: action.height
    }
    FocusGuide {
        preferredFocusedView: action
        x: action.x
        width: action.width
        height: screen.height
    }

    VIRLOButton {
        id: action
        x: Math.max(screen.safeMargin, Math.min(actionLeft.constant, screen.width - screen.safeMargin - width))
        y: Math.max(screen.safeMargin, Math.min(actionTop.constant, screen.height - screen.safeMargin - height))
        width: Math.min(Math.max(420, implicitWidth + 96), 1680)
        height: 96
        fontSize: 38
        iconHeight: 48
        focusRingWidth: 6
    }

    // Keeps the ring and its number readable on any image.
    ImageView {
        id: halo
        anchors.centerIn: countdown
        width: 160
        height: 160
    }

    Item {
        id: closeFocus
        anchors.centerIn: countdown
        width: 145
        height: 145
        opacity: countdown.focused ? 1 : 0
        scale: countdown.focused ? 1 : 0.8
        Behavior on opacity { NumberAnimation { duration: 150 } }
        Behavior on scale { NumberAnimation { duration: 150; easing.type: Easing.OutBack } }

        View {
            anchors.fill: parent
            cornerRadius: width / 2
            backgroundColor: screen.paper
        }
        View {
            anchors.centerIn: parent
            width: 137
            height: 137
            cornerRadius: width / 2
            backgroundColor: screen.ink
        }
        View {
            anchors.centerIn: parent
            width: 123
            height: 123
            cornerRadius: width / 2
            backgroundColor: screen.paper
        }
    }

    VIRLOTimerButton {
        id: countdown
        x: 75
        y: screen.height - 75 - height
        width: 99
        height: 99
        accessibleName: qsTr("Close")
    }
}
