import QtQuick
import Virlo.UI

View {
    id: entry

    property TextField field: holder
    property Item input: textInput
    property Button below: next

    TextField {
        id: holder

        input: textInput
        x: 100
        y: 100
        width: 600
        height: 90
        accessibleName: "Name"

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
