// A name and its state: a word after a symbol, or a button that leads to it.
import QtQuick
import QtQuick.Layouts

RowLayout {
    id: row

    required property string label
    property bool isGood: true
    property string state_
    property string action
    signal pressed()

    width: parent ? parent.width : implicitWidth
    spacing: Theme.size(8)

    AppText {
        Layout.fillWidth: true
        text: row.label
    }
    Symbol {
        visible: row.action === ""
        name: row.isGood ? "checkmark.circle.fill" : "xmark.circle.fill"
        color: row.isGood ? Theme.teal : Theme.grey500
        size: Theme.size(15)
    }
    AppText {
        visible: row.action === ""
        text: row.state_
        color: row.isGood ? Theme.tealText : Theme.secondaryText
        Accessible.name: row.label + ": " + row.state_
    }
    ActionButton {
        visible: row.action !== ""
        text: row.action
        onClicked: row.pressed()
    }
}
