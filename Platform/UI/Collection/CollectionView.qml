import QtQuick
import Virlo.UI

// A grid of cells: `cells` holds a Component (of a CollectionViewCell) for each reuse identifier. It is a list of lines,
// since the GridView of Qt 6.4 makes new delegates for whatever scrolls in, also where they could be reused.
CollectionViewBase {
    id: base

    property real cellWidth: 100
    property real cellHeight: 100
    property real leftMargin: 0
    property alias topMargin: view.topMargin
    property alias bottomMargin: view.bottomMargin

    // What the view scrolls to. Rows that come in later do not change it, so that nothing moves by itself.
    property real scrollPosition: -view.topMargin

    list: view

    onFocusedRowChanged: {
        if (focusedRow < 0)
            return;
        const line = Math.floor(focusedRow / columns);
        const last = view.count * cellHeight + view.bottomMargin - view.height;
        scrollPosition = Math.max(-view.topMargin, Math.min(line * cellHeight - view.topMargin, last));
    }
    onScrollPositionChanged: view.contentY = Math.round(scrollPosition)

    Behavior on scrollPosition {
        SmoothedAnimation { duration: 150; velocity: -1 }
    }

    ListView {
        id: view
        anchors.fill: parent
        clip: true
        interactive: false
        keyNavigationEnabled: false
        currentIndex: -1
        reuseItems: true
        // A line of cells on either side that arrow keys reach before it is seen.
        displayMarginBeginning: base.cellHeight
        displayMarginEnd: base.cellHeight
        cacheBuffer: 0
        model: base.lines

        // qmllint disable unqualified
        delegate: Item {
            id: line
            required property int index
            property bool pooled: false
            width: view.width
            height: base.cellHeight
            ListView.onPooled: pooled = true
            ListView.onReused: pooled = false

            Repeater {
                model: base.columns
                CollectionSlot {
                    required property int index
                    x: base.leftMargin + index * base.cellWidth
                    width: base.cellWidth
                    height: base.cellHeight
                    collection: base
                    row: line.pooled ? -1 : line.index * base.columns + index
                }
            }
        }
        // qmllint enable unqualified
    }
}
