// A group of detections: a header with their number, and their rows.
import QtQuick
import QtQuick.Layouts

Column {
    id: group

    required property string symbol
    required property string title
    required property int count
    required property string listName
    property string note
    default property alias rows: list.data

    spacing: Theme.size(6)
    visible: count > 0

    RowLayout {
        width: parent.width
        spacing: Theme.size(6)
        Accessible.role: Accessible.Heading
        Accessible.name: group.title + ", " + group.count
        Symbol {
            name: group.symbol
            size: Theme.size(13)
        }
        AppText {
            text: group.title
            font { bold: true; pixelSize: Theme.size(12) }
            Accessible.ignored: true
        }
        Rectangle {
            implicitWidth: Math.max(number.implicitWidth + Theme.size(10), implicitHeight)
            implicitHeight: number.implicitHeight + 2
            radius: height / 2
            color: Theme.grey200
            AppText {
                id: number
                anchors.centerIn: parent
                text: group.count
                font { bold: true; pixelSize: Theme.size(11) }
                Accessible.ignored: true
            }
        }
        Item { Layout.fillWidth: true }
    }
    AppText {
        width: parent.width
        visible: group.note !== ""
        text: group.note
        color: Theme.secondaryText
        font.pixelSize: Theme.size(11)
    }
    Column {
        id: list
        width: parent.width
        spacing: Theme.size(6)
        Accessible.role: Accessible.List
        Accessible.name: group.listName
    }
}
