import QtQuick
import TVHost

// The game's menu: laid out on 1920x1080 points and scaled to the window as a whole.
Rectangle {
    id: menu

    required property Game game
    readonly property real fit: Math.min(width / 1920, height / 1080)

    color: "#0b1026"

    // Menu leaves the game. Where it is held down to close an ad, the repeats do not.
    Keys.onPressed: event => {
        if ((event.key === Qt.Key_Escape || event.key === Qt.Key_Back) && !event.isAutoRepeat)
            Qt.quit()
    }

    Item {
        width: 1920
        height: 1080
        x: (menu.width - width * menu.fit) / 2
        y: (menu.height - height * menu.fit) / 2
        scale: menu.fit
        transformOrigin: Item.TopLeft

        Rectangle {
            anchors.fill: parent
            gradient: Gradient {
                GradientStop { position: 0.0; color: "#16204d" }
                GradientStop { position: 0.62; color: "#3b2a6b" }
                GradientStop { position: 1.0; color: "#0b1026" }
            }
        }

        Text {
            x: 96
            y: 84
            text: "Ember Trail"
            color: "white"
            font { pixelSize: 92; bold: true }
        }

        Text {
            x: 100
            y: 206
            text: menu.game.status
            color: "#d5dcff"
            font.pixelSize: 34
        }

        Rectangle {
            anchors { right: parent.right; rightMargin: 96 }
            y: 92
            width: wallet.implicitWidth + 72
            height: 88
            radius: 44
            color: "#cc0b1026"
            border { color: "#ffd25a"; width: 3 }

            Text {
                id: wallet
                anchors.centerIn: parent
                text: "● " + menu.game.coins + " coins"
                color: "#ffd25a"
                font { pixelSize: 40; bold: true }
            }
        }

        ListView {
            id: tiles
            objectName: "tiles"
            x: 96
            y: 420
            width: 1728
            height: 420
            focus: true
            orientation: ListView.Horizontal
            spacing: 36
            interactive: false
            keyNavigationEnabled: true // which goes with the line above unless it is said
            highlightMoveDuration: 0
            model: menu.game.tiles
            delegate: Tile {
                id: tile

                required property var modelData
                required property int index

                title: tile.modelData.title
                hint: tile.modelData.hint
                tint: tile.modelData.tint
                focus: tile.index === 0
                onChosen: menu.game.choose(tile.modelData.placement) // qmllint disable unqualified
            }
        }

        Text {
            x: 100
            y: 940
            text: "◀ ▶  choose      OK  open      Menu  leave"
            color: "#d5dcff"
            font.pixelSize: 32
        }
    }
}
