import QtQuick
import Virlo.UI

// The ground of a cell, and the ring and shadow that it has with the focus.
Item {
    id: card

    required property real inset
    required property bool highlighted

    anchors.fill: parent

    View {
        anchors.fill: ground
        anchors.margins: -6
        cornerRadius: 24
        backgroundColor: "#0b3d91"
        shadowOpacity: 0.4
        shadowRadius: 8
        shadowOffset: Qt.point(0, 6)
        visible: card.highlighted
    }
    Rectangle {
        id: ground
        anchors.fill: parent
        anchors.margins: card.inset
        radius: 18
        color: "white"
    }
}
