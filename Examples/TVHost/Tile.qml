import QtQuick

// One entry of the menu; grows and gets a bright frame while it has the remote's focus.
FocusScope {
    id: tile

    required property string title
    required property string hint
    required property color tint
    signal chosen

    // The same with the focus as without it, so that the lines break alike.
    readonly property real textWidth: width - 100

    width: 405
    height: 420
    Accessible.role: Accessible.Button
    Accessible.name: title

    Rectangle {
        anchors { fill: parent; margins: tile.activeFocus ? 0 : 18 }
        focus: true
        radius: 28
        color: tile.tint
        border { color: tile.activeFocus ? "white" : "transparent"; width: 8 }

        Text {
            anchors { left: parent.left; bottom: note.top; margins: 32; bottomMargin: 12 }
            width: tile.textWidth
            text: tile.title
            color: "white"
            wrapMode: Text.WordWrap
            font { pixelSize: 52; bold: true }
        }

        Text {
            id: note
            anchors { left: parent.left; bottom: parent.bottom; margins: 32 }
            width: tile.textWidth
            text: tile.hint
            color: "white"
            wrapMode: Text.WordWrap
            font.pixelSize: 30
        }

        Keys.onReturnPressed: tile.chosen()
        Keys.onEnterPressed: tile.chosen()
        Keys.onSpacePressed: tile.chosen()
        Keys.onSelectPressed: tile.chosen()
    }
}
