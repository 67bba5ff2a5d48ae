// A column that scrolls if it is too high. It scrolls the focused item into view; if it has no
// controls, the arrow keys scroll it.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window

Flickable {
    id: area

    default property alias contents: column.data
    property alias spacing: column.spacing
    property real margin: 0
    property real marginAbove: margin
    property bool isText: false

    implicitHeight: column.implicitHeight + 2 * marginAbove
    contentWidth: width
    contentHeight: column.implicitHeight + 2 * marginAbove
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    activeFocusOnTab: isText
    Keys.onUpPressed: bar.decrease()
    Keys.onDownPressed: bar.increase()
    ScrollBar.vertical: ScrollBar {
        id: bar
        policy: area.contentHeight > area.height + 1 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        stepSize: 0.1
        padding: 2
        contentItem: Rectangle {
            implicitWidth: 5
            radius: 2.5
            color: bar.pressed ? Theme.grey500 : Theme.grey300
        }
    }

    Column {
        id: column
        x: area.margin
        y: area.marginAbove
        width: area.width - 2 * area.margin
    }

    function holds(item) {
        for (let each = item; each; each = each.parent)
            if (each === column)
                return true
        return false
    }
    function reveal(item) {
        const at = item.mapToItem(column, 0, 0).y + marginAbove
        const room = 12
        if (at - room < contentY)
            contentY = Math.max(0, at - room)
        else if (at + item.height + room > contentY + height)
            contentY = Math.min(Math.max(0, contentHeight - height),
                                at + item.height + room - height)
    }
    Connections {
        target: area.Window.window
        function onActiveFocusItemChanged() {
            const item = area.Window.activeFocusItem
            if (item && area.holds(item))
                area.reveal(item)
        }
    }
}
