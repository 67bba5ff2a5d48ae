// The common layout of the steps of the first run: a title, the content, and the buttons below.
import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: page

    required property var bridge
    required property string title
    property string text
    property alias picture: pictureRow.data
    default property alias contents: area.contents
    property alias buttons: buttonColumn.data
    property bool animateContent: false
    readonly property real margin: Theme.size(28)

    /// Scrolls to an item that has just appeared.
    function reveal(item) {
        Qt.callLater(() => area.reveal(item))
    }

    spacing: 0
    opacity: animateContent ? 1 : 0
    Component.onCompleted: animateContent = true
    Behavior on opacity { NumberAnimation { duration: Theme.duration(220) } }

    ScrollArea {
        id: area
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: Theme.size(11)
        margin: page.margin
        marginAbove: Theme.size(10)

        Item {
            id: pictureRow
            width: parent.width
            height: childrenRect.height
            visible: children.length > 0
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: page.title
            font { bold: true; pixelSize: Theme.size(21) }
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        AppText {
            width: parent.width
            visible: text !== ""
            horizontalAlignment: Text.AlignHCenter
            text: page.text
            color: Theme.secondaryText
        }
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: area.contentHeight > area.height + 1 ? Theme.grey200 : "transparent"
    }
    Column {
        id: buttonColumn
        Layout.fillWidth: true
        Layout.leftMargin: page.margin
        Layout.rightMargin: page.margin
        Layout.topMargin: Theme.size(12)
        Layout.bottomMargin: Theme.size(18)
        spacing: Theme.size(8)
    }
}
