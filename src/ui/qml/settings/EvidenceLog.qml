// The recorded objections, newest first.
import QtQuick
import QtQuick.Layouts

Column {
    id: log

    required property var bridge
    readonly property bool isEmpty: bridge.evidence.count === 0

    spacing: Theme.size(8)

    AppText {
        width: parent.width
        visible: log.isEmpty
        text: "No objections filed yet. When you click \"Object\" in the popover, your objection is logged here."
        color: Theme.secondaryText
        font.pixelSize: Theme.size(12)
    }
    Flow {
        width: parent.width
        visible: !log.isEmpty
        spacing: Theme.size(8)
        ActionButton {
            text: "Copy"
            symbol: "doc.on.doc"
            hint: "Copies the evidence log as comma-separated values"
            onClicked: log.bridge.copyEvidence()
        }
        ActionButton {
            text: "Export…"
            symbol: "square.and.arrow.down"
            hint: "Saves the evidence log as comma-separated values or JSON"
            onClicked: log.bridge.exportEvidence()
        }
    }
    AppText {
        width: parent.width
        visible: text !== ""
        text: log.bridge.exportText
        color: Theme.secondaryText
        font.pixelSize: Theme.size(11)
        wrapMode: Text.WrapAnywhere
    }
    Column {
        width: parent.width
        visible: !log.isEmpty
        Accessible.role: Accessible.List
        Accessible.name: "Evidence Log"
        Repeater {
            model: log.bridge.evidence
            Item {
                id: entry
                required property int index
                required property string title
                required property string subtitle
                required property string detail
                required property string spoken
                width: parent ? parent.width : 0
                height: layout.implicitHeight + Theme.size(14)
                Accessible.role: Accessible.ListItem
                Accessible.name: spoken
                Rectangle {
                    width: parent.width
                    height: 1
                    color: Theme.grey200
                }
                RowLayout {
                    id: layout
                    anchors { left: parent.left; right: parent.right }
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: Theme.size(10)
                    Column {
                        Layout.fillWidth: true
                        spacing: 2
                        OneLine {
                            width: parent.width
                            text: entry.title
                            font.bold: true
                            Accessible.ignored: true
                        }
                        OneLine {
                            width: parent.width
                            visible: text !== ""
                            text: entry.subtitle
                            color: Theme.secondaryText
                            font.pixelSize: Theme.size(11)
                            Accessible.ignored: true
                        }
                    }
                    AppText {
                        text: entry.detail
                        color: Theme.secondaryText
                        font.pixelSize: Theme.size(11)
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}
