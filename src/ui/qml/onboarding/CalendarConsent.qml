// The question whether Quorva may read the user's calendars.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: question

    required property var bridge

    title: "Quorva"
    width: Theme.size(380)
    height: layout.implicitHeight + 2 * Theme.size(20)
    minimumWidth: width
    minimumHeight: height
    flags: Qt.Dialog | Qt.WindowTitleHint | Qt.WindowCloseButtonHint | Qt.WindowStaysOnTopHint
    color: Theme.grey50

    ColumnLayout {
        id: layout
        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors.margins: Theme.size(20)
        spacing: Theme.size(12)
        focus: true
        Keys.onEscapePressed: question.bridge.answer(false)

        RowLayout {
            spacing: Theme.size(14)
            ShieldBadge {
                size: Theme.size(48)
                Layout.alignment: Qt.AlignTop
            }
            Column {
                Layout.fillWidth: true
                spacing: Theme.size(6)
                AppText {
                    width: parent.width
                    text: "Allow Quorva to read your calendars?"
                    font { bold: true; pixelSize: Theme.size(14) }
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                AppText {
                    width: parent.width
                    text: "It looks for bots among the people invited to your meetings of the next 24 hours. Nothing is written to your calendars, and nothing leaves this computer."
                    color: Theme.secondaryText
                    font.pixelSize: Theme.size(12)
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.size(8)
            Item { Layout.fillWidth: true }
            ActionButton {
                text: "Don't Allow"
                focus: true
                textSize: Theme.size(13)
                onClicked: question.bridge.answer(false)
            }
            ActionButton {
                text: "Allow"
                kind: ActionButton.Kind.Primary
                textSize: Theme.size(13)
                onClicked: question.bridge.answer(true)
            }
        }
    }
}
