// The detection history, newest first.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

Sheet {
    id: sheet

    required property var entries

    title: "Detection History"

    Column {
        anchors.centerIn: parent
        visible: sheet.entries.count === 0
        spacing: Theme.size(10)
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "checkmark.shield"
            color: Theme.teal
            size: Theme.size(36)
        }
        AppText {
            text: "No detections yet"
            color: Theme.secondaryText
        }
    }
    ListView {
        id: list
        anchors.fill: parent
        visible: count > 0
        model: sheet.entries
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: sheet.title
        ScrollBar.vertical: ScrollBar {}
        delegate: Item {
            id: entry
            required property int index
            required property string title
            required property string subtitle
            required property string detail
            required property string badge ///< a symbol, where it is no detection
            required property string spoken
            width: ListView.view.width
            height: layout.implicitHeight + Theme.size(16)
            Accessible.role: Accessible.ListItem
            Accessible.name: spoken
            Rectangle {
                anchors.fill: parent
                visible: entry.ListView.isCurrentItem && list.activeFocus
                color: Theme.grey100
            }
            RowLayout {
                id: layout
                anchors { left: parent.left; right: parent.right }
                anchors { verticalCenter: parent.verticalCenter; margins: Theme.size(14) }
                spacing: Theme.size(10)
                Symbol {
                    visible: entry.badge !== ""
                    name: entry.badge
                    color: Theme.amber
                    size: Theme.size(16)
                }
                Column {
                    Layout.fillWidth: true
                    spacing: 2
                    OneLine {
                        width: parent.width
                        text: entry.title
                        font.bold: true
                        Accessible.ignored: true
                    }
                    AppText {
                        width: parent.width
                        text: entry.subtitle
                        elide: Text.ElideRight
                        maximumLineCount: entry.badge === "" ? 1 : 6
                        color: Theme.secondaryText
                        font.pixelSize: Theme.size(11)
                        Accessible.ignored: true
                    }
                }
                AppText {
                    text: entry.detail
                    color: Theme.secondaryText
                    font.pixelSize: Theme.size(11)
                    Layout.maximumWidth: entry.width * 0.45
                    Accessible.ignored: true
                }
            }
            Rectangle {
                anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
                anchors { leftMargin: Theme.size(14); rightMargin: Theme.size(14) }
                height: 1
                color: Theme.grey200
            }
        }
    }
}
