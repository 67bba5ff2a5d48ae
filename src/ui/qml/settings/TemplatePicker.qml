// Picks the objection statement.
import QtQuick
import QtQuick.Controls.Basic

Column {
    id: picker

    required property var bridge

    spacing: Theme.size(4)
    Accessible.role: Accessible.Grouping
    Accessible.name: "Template"

    AppText {
        text: "Template"
        font { bold: true; pixelSize: Theme.size(12) }
    }
    Repeater {
        model: picker.bridge.templates
        RadioButton {
            id: choice
            required property int index
            required property string title
            required property string subtitle
            width: parent ? parent.width : implicitWidth
            padding: Theme.size(4)
            text: title
            checked: picker.bridge.selectedTemplate === index
            Accessible.name: text
            Accessible.description: subtitle
            Accessible.checkable: true
            Accessible.checked: checked
            Accessible.onPressAction: choose()
            Accessible.onToggleAction: choose()
            onToggled: choose()
            function choose() {
                picker.bridge.selectedTemplate = index
                checked = Qt.binding(() => picker.bridge.selectedTemplate === index)
            }
            indicator: Rectangle {
                x: Theme.size(4)
                y: Theme.size(6)
                implicitWidth: Theme.size(16)
                implicitHeight: implicitWidth
                radius: width / 2
                color: Theme.surface
                border { width: choice.checked ? 5 : 1.5; color: choice.checked ? Theme.tealText : Theme.grey500 }
                FocusRing { target: choice; radius: width / 2 }
            }
            contentItem: Column {
                leftPadding: Theme.size(26)
                AppText {
                    width: parent.width - parent.leftPadding
                    text: choice.title
                    font.bold: choice.checked
                    Accessible.ignored: true
                }
                AppText {
                    width: parent.width - parent.leftPadding
                    text: choice.subtitle
                    color: Theme.secondaryText
                    font.pixelSize: Theme.size(11)
                    Accessible.ignored: true
                }
            }
        }
    }
}
