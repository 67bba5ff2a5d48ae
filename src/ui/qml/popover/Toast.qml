// Confirms an action for a moment.
import QtQuick
import QtQuick.Layouts

Rectangle {
    id: toast

    required property bool isShown
    required property string symbol
    required property string title
    required property string text

    implicitHeight: Math.max(row.implicitHeight + Theme.size(20), Theme.size(70))
    radius: Theme.radius
    color: Theme.slate
    visible: opacity > 0
    opacity: isShown ? 1 : 0
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title
    Accessible.description: text
    Accessible.ignored: !isShown

    Behavior on opacity { NumberAnimation { duration: Theme.duration(160) } }

    RowLayout {
        id: row
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        anchors.margins: Theme.size(12)
        spacing: Theme.size(10)
        Symbol {
            name: toast.symbol
            color: Theme.yellow
            size: Theme.size(20)
        }
        Column {
            Layout.fillWidth: true
            AppText {
                width: parent.width
                text: toast.title
                color: "#FFFFFF"
                font.bold: true
            }
            AppText {
                width: parent.width
                text: toast.text
                color: "#FFFFFF"
                font.pixelSize: Theme.size(11)
            }
        }
    }
}
