// The statement of objections, and the recorded objections.
import QtQuick

SettingsTab {
    id: tab

    SettingsSection {
        title: "Default Template"
        TemplatePicker {
            width: parent.width
            bridge: tab.bridge
        }
        AppText {
            width: parent.width
            text: "Preview:"
            font { bold: true; pixelSize: Theme.size(12) }
        }
        Rectangle {
            width: parent.width
            height: preview.implicitHeight + Theme.size(20)
            radius: Theme.radius - 3
            color: Theme.grey100
            AppText {
                id: preview
                anchors { left: parent.left; right: parent.right; top: parent.top }
                anchors.margins: Theme.size(10)
                text: tab.bridge.preview
                color: Theme.secondaryText
                font.pixelSize: Theme.size(12)
                lineHeight: 1.2
            }
        }
    }
    SettingsSection {
        title: "Evidence Log (" + tab.bridge.evidence.count + " entries)"
        EvidenceLog {
            width: parent.width
            bridge: tab.bridge
        }
    }
}
