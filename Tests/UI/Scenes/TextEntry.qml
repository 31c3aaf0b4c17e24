import QtQuick
import Virlo.UI

View {
    id: entry

    property View field: holder
    property Item input: textInput
    property Button below: next

    View {
        id: holder

        focusable: true
        x: 100
        y: 100
        width: 600
        height: 90
        accessibleName: "Name"
        onFocusedChanged: if (holder.focused)
            textInput.forceActiveFocus()

        TextInput {
            id: textInput

            anchors.fill: holder
        }
    }

    Button {
        id: next

        x: 100
        y: 300
        width: 400
        height: 90
        title: "Next"
    }
}
