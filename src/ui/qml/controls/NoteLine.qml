// A small remark after a symbol.
import QtQuick
import QtQuick.Layouts

RowLayout {
    id: note

    required property string symbol
    required property string text
    property color color: Theme.secondaryText
    property color inkOfText: color
    property real textSize: Theme.size(11)
    property bool isCentred: false

    width: parent ? parent.width : implicitWidth
    spacing: Theme.size(5)

    Item { visible: note.isCentred; Layout.fillWidth: true }
    Symbol {
        name: note.symbol
        color: note.color
        size: note.textSize + 2
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: 1
    }
    AppText {
        Layout.fillWidth: !note.isCentred
        Layout.maximumWidth: note.width - note.textSize - Theme.size(10)
        text: note.text
        color: note.inkOfText
        font.pixelSize: note.textSize
    }
    Item { visible: note.isCentred; Layout.fillWidth: true }
}
