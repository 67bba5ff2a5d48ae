// Explains the question for calendar access while it is open, and says when access is granted.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: helper

    required property var bridge
    readonly property bool isAsking: !bridge.hasAccess && !bridge.lacksCalendars

    title: "Calendar Access"
    width: Theme.size(400)
    height: Theme.size(260)
    minimumWidth: width
    minimumHeight: height
    flags: Qt.Dialog | Qt.WindowTitleHint | Qt.WindowCloseButtonHint | Qt.WindowStaysOnTopHint
    color: Theme.grey50

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.size(20)
        spacing: Theme.size(8)
        focus: true
        Keys.onEscapePressed: helper.close()

        Item { Layout.fillHeight: true }
        Symbol {
            Layout.alignment: Qt.AlignHCenter
            name: helper.bridge.hasAccess ? "checkmark.circle.fill" : "calendar.badge.checkmark"
            color: helper.bridge.hasAccess ? Theme.teal : Theme.slate
            size: Theme.size(36)
        }
        AppText {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: "Calendar Access"
            font { bold: true; pixelSize: Theme.size(18) }
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        AppText {
            Layout.fillWidth: true
            visible: helper.isAsking
            horizontalAlignment: Text.AlignHCenter
            textFormat: Text.StyledText // this program's own text, with a word in bold
            text: "Click <b>Allow</b> in the system dialog to let Quorva scan your calendars for bot attendees."
            Accessible.name: "Click Allow in the system dialog to let Quorva scan your calendars for bot attendees."
        }
        AppText {
            Layout.fillWidth: true
            visible: helper.isAsking
            horizontalAlignment: Text.AlignHCenter
            text: "If no dialog appeared, enable QuorvaApp manually:"
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
        }
        ActionButton {
            Layout.alignment: Qt.AlignHCenter
            visible: helper.isAsking
            text: "Open Calendar Settings"
            onClicked: helper.bridge.openCalendarSettings()
        }
        AppText {
            Layout.fillWidth: true
            visible: helper.bridge.lacksCalendars
            horizontalAlignment: Text.AlignHCenter
            text: "There is no calendar service and no folder of calendars."
            font.bold: true
        }
        MissingCalendarsHelp {
            Layout.fillWidth: true
            visible: helper.bridge.lacksCalendars
            horizontalAlignment: Text.AlignHCenter
        }
        AppText {
            Layout.fillWidth: true
            visible: helper.bridge.hasAccess
            horizontalAlignment: Text.AlignHCenter
            text: "Calendar access granted!"
            color: Theme.tealText
            font.bold: true
        }
        AppText {
            Layout.fillWidth: true
            visible: helper.bridge.hasAccess
            horizontalAlignment: Text.AlignHCenter
            text: "Quorva will now scan your calendars for AI bot attendees."
        }
        Item { Layout.fillHeight: true }
        NoteLine {
            Layout.fillWidth: true
            symbol: "lock.fill"
            text: "Read-only. Calendar data never leaves your device."
            isCentred: true
        }
    }
}
