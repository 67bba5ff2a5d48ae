// Settings for the start, notifications and updates.
import QtQuick

SettingsTab {
    id: tab

    SettingsSection {
        title: "General"
        ToggleRow {
            text: "Launch at login"
            isOn: tab.bridge.launchAtLogin
            onSwitched: isOn => tab.bridge.launchAtLogin = isOn
        }
        ToggleRow {
            text: "Show notifications"
            isOn: tab.bridge.showNotifications
            onSwitched: isOn => tab.bridge.showNotifications = isOn
        }
        ToggleRow {
            text: "Auto-start monitoring"
            isOn: tab.bridge.autoStart
            onSwitched: isOn => tab.bridge.autoStart = isOn
        }
    }
    SettingsSection {
        title: "Updates"
        ToggleRow {
            text: "Check for updates automatically"
            isOn: tab.bridge.checksAutomatically
            onSwitched: isOn => tab.bridge.checksAutomatically = isOn
        }
        ActionButton {
            text: "Check for Updates…"
            enabled: !tab.bridge.isChecking
            onClicked: tab.bridge.checkForUpdates()
        }
        AppText {
            width: parent.width
            visible: text !== ""
            text: tab.bridge.updateText
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
    }
    SettingsSection {
        title: "What Is Limited Now"
        visible: tab.bridge.limitations !== ""
        NoteLine {
            symbol: "exclamationmark.triangle.fill"
            text: tab.bridge.limitations
            color: Theme.orangeText
            textSize: Theme.size(12)
        }
    }
}
