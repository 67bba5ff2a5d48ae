// Lists what could not be read, so that "All Clear" never stands alone above it.
import QtQuick

Rectangle {
    id: box

    required property string text

    width: parent ? parent.width : 0
    visible: text !== ""
    implicitHeight: note.implicitHeight + Theme.size(16)
    radius: Theme.radius - 2
    color: Qt.alpha(Theme.orange, 0.14)
    border { width: 1; color: Qt.alpha(Theme.orange, 0.6) }
    NoteLine {
        id: note
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.size(10)
        width: parent.width - 2 * x
        symbol: "exclamationmark.triangle.fill"
        text: box.text
        color: Theme.orangeText
    }
}
