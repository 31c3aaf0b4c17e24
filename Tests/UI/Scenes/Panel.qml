import QtQuick
import Virlo.UI

View {
    id: panel

    property Button actionButton: action
    property Button closeButton: close
    property Label titleLabel: title
    property ImageView background: image
    property LayoutConstraint actionPositionX: positionX
    property Item noView: holder
    property View empty: null

    LayoutConstraint {
        id: positionX
    }

    ImageView {
        id: image

        anchors.fill: parent
        contentMode: ImageView.AspectFill
    }

    Item {
        id: holder

        anchors.fill: parent

        Label {
            id: title

            x: 60
            y: 60
            width: 900
            height: 80
            text: "A panel"
        }

        Button {
            id: action

            x: positionX.constant
            y: 800
            width: 460
            height: 90
            title: "Go"
            backgroundColor: action.focused ? "#d0342c" : "#404040"
            cornerRadius: 10
        }
    }

    Button {
        id: close

        x: 1700
        y: 60
        width: 120
        height: 120
        title: "X"
        accessibleName: "Close"
    }

    FocusGuide {
        preferredFocusedView: close
        x: close.x
        width: close.width
        anchors.top: parent.top
        anchors.bottom: parent.bottom
    }
}
