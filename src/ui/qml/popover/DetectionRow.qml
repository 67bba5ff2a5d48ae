// The common part of all detection rows: two lines of text, the buttons that a kind adds, and the
// menu.
import QtQuick
import QtQuick.Layouts

Rectangle {
    id: row

    required property string title
    required property string line
    required property string note
    required property string spoken
    required property string key
    property string symbol
    property color accent: Theme.red
    default property alias actions: actionRow.data
    signal allowed(string key)

    implicitHeight: layout.implicitHeight + Theme.size(16)
    radius: Theme.radius - 2
    color: Theme.surface
    border { width: 1; color: Theme.grey200 }
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.description: note

    Rectangle {
        x: 5
        width: 3
        height: parent.height - 14
        radius: 1.5
        anchors.verticalCenter: parent.verticalCenter
        color: row.accent
    }
    RowLayout {
        id: layout
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        anchors { leftMargin: Theme.size(15); rightMargin: Theme.size(7) }
        spacing: Theme.size(6)
        Symbol {
            visible: row.symbol !== ""
            name: row.symbol
            color: row.accent
            size: Theme.size(14)
        }
        Column {
            Layout.fillWidth: true
            spacing: 2
            OneLine {
                width: parent.width
                text: row.title
                font.bold: true
                Accessible.ignored: true
            }
            AppText {
                width: parent.width
                text: row.line
                color: Theme.secondaryText
                font.pixelSize: Theme.size(11)
                elide: Text.ElideRight
                maximumLineCount: 2
                Accessible.ignored: true
            }
        }
        Row {
            id: actionRow
            spacing: Theme.size(2)
        }
        IconButton {
            id: more
            visible: row.key !== ""
            symbol: "ellipsis"
            name: "More for " + row.title
            onClicked: menu.open()
            Accessible.role: Accessible.ButtonMenu
            RowMenu {
                id: menu
                x: more.width - width
                y: more.height
                product: row.title
                onAllowed: row.allowed(row.key)
            }
        }
    }
    HoverHandler { id: hover }
    TapHandler {
        acceptedButtons: Qt.RightButton
        enabled: row.key !== ""
        onTapped: menu.open()
    }
    Hint {
        text: row.note
        isWanted: hover.hovered && !menu.visible
    }
}
