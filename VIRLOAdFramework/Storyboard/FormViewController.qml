import QtQuick
import Virlo.UI
import VIRLOAdFramework

// The contact form: a panel in the middle of the dimmed ad, or standing on the keyboard while there is one, and the
// page that confirms the sending in its place. It covers the ad's controls for the focus.
View {
    id: screen

    property alias formView: panel
    property alias formViewForm: form
    property alias formViewSubmitted: submitted
    property alias formTextInputView: field
    property alias sendDataButton: send
    property alias adCompletedButton: completed
    property alias formAlertLabel: alert
    property alias formDescriptionLabel: description
    property alias formViewTopMargin: topMargin
    property alias inputFieldHeight: fieldHeight
    property alias sendBtnHeight: sendHeight
    property alias keyboardTop: keyboardLine

    readonly property real margin: 48
    readonly property real contentWidth: panel.width - 2 * margin
    // What the panel's foot keeps its distance from.
    readonly property real floor: keyboardLine.constant > 0 ? keyboardLine.constant : (height + panel.height) / 2 + 20

    width: 1920
    height: 1080
    obscuresFocus: true
    backgroundColor: "#99000000"

    LayoutConstraint { id: topMargin }
    LayoutConstraint { id: fieldHeight }
    LayoutConstraint { id: sendHeight }
    LayoutConstraint { id: keyboardLine }

    View {
        id: panel
        x: (screen.width - width) / 2
        y: screen.floor + topMargin.constant
        width: 1240
        height: 504
        backgroundColor: "#1d2433"
        Behavior on y { NumberAnimation { duration: 200; easing.type: Easing.OutCubic } }

        // Its edge, also over a dark ad.
        Rectangle {
            anchors.fill: parent
            color: "transparent"
            radius: panel.cornerRadius
            border { width: 2; color: "#6b7890" }
        }

        View {
            id: form
            anchors.fill: parent

            Label {
                id: description
                x: screen.margin
                y: 28
                width: screen.contentWidth
                height: 126
                fontSize: 32
                wraps: true
                textColor: "#ffffff"
            }

            VIRLOFormTextField {
                id: field
                input: typed
                x: screen.margin
                y: 227 - height / 2
                width: screen.contentWidth
                height: fieldHeight.constant
                cornerRadius: 10
                backgroundColor: focused ? "#ffffff" : "#ccd3df"

                // The focus ring, as that of the buttons.
                Rectangle {
                    anchors { fill: parent; margins: -14 }
                    visible: field.focused
                    color: "transparent"
                    radius: 24
                    border { width: 6; color: "#ffffff" }
                }
                Item {
                    id: line
                    anchors { fill: parent; leftMargin: 28; rightMargin: 28 }
                    clip: true

                    Text {
                        anchors.fill: parent
                        visible: typed.text.length === 0
                        text: field.placeholder
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        horizontalAlignment: Text.AlignLeft
                        verticalAlignment: Text.AlignVCenter
                        font.pixelSize: 40
                        color: "#4d5666"
                    }
                    TextInput {
                        id: typed
                        anchors.fill: parent
                        // Explicit: without it an empty text asks the input method for its direction, which crashes on
                        // a Wayland display without a seat.
                        horizontalAlignment: TextInput.AlignLeft
                        verticalAlignment: TextInput.AlignVCenter
                        activeFocusOnPress: false
                        inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
                        font.pixelSize: 44
                        color: "#10141f"
                        cursorDelegate: Item {}
                    }
                    // Also while the keyboard has the keys.
                    Rectangle {
                        visible: field.focused
                        x: Math.min(typed.cursorRectangle.x, line.width - width)
                        y: (line.height - height) / 2
                        width: 4
                        height: 54
                        color: "#1660c8"
                    }
                }
            }

            Label {
                id: alert
                x: screen.margin
                y: 298
                width: screen.contentWidth
                height: 44
                fontSize: 30
                textColor: "#ffb3a6"
                accessibleName: text
            }

            VIRLOFormButton {
                id: send
                x: screen.margin
                y: 416 - height / 2
                width: screen.contentWidth
                height: sendHeight.constant
                cornerRadius: 10
                title: qsTr("Send")
                titleColor: enabled ? "#ffffff" : "#c3cbd9"
                backgroundColor: enabled ? "#1660c8" : "#3a4357"
                focusRingWidth: 6
            }
        }

        View {
            id: submitted
            anchors.fill: parent
            visible: false

            Label {
                x: screen.margin
                y: 60
                width: screen.contentWidth
                height: 80
                fontSize: 54
                bold: true
                textAlignment: Qt.AlignCenter
                textColor: "#ffffff"
                text: qsTr("Thank you")
            }
            Label {
                x: screen.margin
                y: 160
                width: screen.contentWidth
                height: 100
                fontSize: 34
                wraps: true
                textAlignment: Qt.AlignCenter
                textColor: "#eceff5"
                text: qsTr("Your contact data has been sent.")
            }
            VIRLOFormButton {
                id: completed
                x: screen.margin
                y: 350 - height / 2
                width: screen.contentWidth
                height: focused ? 110 : 90
                cornerRadius: 10
                title: qsTr("Continue")
                titleColor: "#ffffff"
                backgroundColor: "#1660c8"
                focusRingWidth: 6
            }
        }
    }
}
