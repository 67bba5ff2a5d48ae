// The detectors with their permissions, and the products that the user allows.
import QtQuick
import QtQuick.Layouts

SettingsTab {
    id: tab

    SettingsSection {
        title: "Process Monitoring"
        AppText {
            width: parent.width
            text: "Scans running processes for known AI bots using 180+ signatures. No permissions required."
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
        StateRow {
            label: "Status"
            isGood: tab.bridge.isMonitoring
            state_: tab.bridge.isMonitoring ? "Active" : "Inactive"
        }
    }
    SettingsSection {
        title: "Calendar Monitoring"
        ToggleRow {
            text: "Enable calendar scanning"
            description: "Finds bots such as Otter.ai, Fireflies and Read.ai among the people invited to your meetings."
            isOn: tab.bridge.calendarEnabled
            onSwitched: isOn => tab.bridge.calendarEnabled = isOn
        }
        StateRow {
            label: "Calendar access"
            state_: "Granted"
            action: tab.bridge.hasCalendarAccess ? "" : "Grant Calendar Access"
            onPressed: tab.bridge.grantCalendarAccess()
        }
        TextRow {
            label: "Your e-mail addresses"
            description: "Whoever is invited with one of them is you, and no bot. Those of your calendar accounts are known without being named."
            placeholder: "ann@example.com, ann@firm.example"
            problem: tab.bridge.addressesHelp
            value: tab.bridge.myAddresses
            onEntered: text => tab.bridge.myAddresses = text
        }
        Column {
            width: parent.width
            visible: tab.bridge.needsCalendarAccount
            spacing: Theme.size(6)
            NoteLine {
                symbol: "exclamationmark.triangle.fill"
                text: "No work calendars found"
                color: Theme.orangeText
                textSize: Theme.size(13)
            }
            AppText {
                width: parent.width
                text: "Add your Google or Exchange account in System Settings so Quorva can scan your meeting invites."
                color: Theme.secondaryText
                font.pixelSize: Theme.size(12)
            }
            ActionButton {
                text: "Add Calendar Account…"
                onClicked: tab.bridge.openInternetAccounts()
            }
            AppText {
                width: parent.width
                visible: text !== ""
                text: tab.bridge.accountsHelp
                font.pixelSize: Theme.size(11)
            }
        }
    }
    SettingsSection {
        title: "Meeting Participant Monitoring"
        ToggleRow {
            text: "Enable participant scanning"
            description: "Reads participant lists in Zoom, Teams, and Meet via the Accessibility API to detect bot participants and recording indicators."
            isOn: tab.bridge.participantEnabled
            onSwitched: isOn => tab.bridge.participantEnabled = isOn
        }
        StateRow {
            label: "Accessibility permission"
            state_: "Granted"
            action: tab.bridge.hasAccessibility ? "" : "Open Settings"
            onPressed: tab.bridge.openAccessibilitySettings()
        }
        AppText {
            width: parent.width
            visible: text !== "" && !tab.bridge.hasAccessibility
            text: tab.bridge.accessibilityHelp
            font.pixelSize: Theme.size(11)
        }
        RowLayout {
            width: parent.width
            AppText {
                Layout.fillWidth: true
                text: "Active meeting"
            }
            AppText {
                text: tab.bridge.activeMeeting
                color: Theme.secondaryText
                Accessible.name: "Active meeting: " + text
            }
        }
    }
    SettingsSection {
        title: "Trial"
        AppText {
            width: parent.width
            text: "Sends a harmless stand-in through each source to a detection, and names the link that is broken if one is."
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
        ActionButton {
            text: "Test detection…"
            enabled: !tab.bridge.isTrying
            onClicked: tab.bridge.testDetection()
        }
        AppText {
            width: parent.width
            visible: text !== ""
            text: tab.bridge.trialText
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
    }
    SettingsSection {
        title: "Allowed"
        AppText {
            width: parent.width
            visible: tab.bridge.allowed.count === 0
            text: "Nothing is allowed. \"Allow…\" in the menu of a detection hides its product from then on."
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
        Column {
            width: parent.width
            visible: tab.bridge.allowed.count > 0
            spacing: Theme.size(6)
            Accessible.role: Accessible.List
            Accessible.name: "Allowed"
            Repeater {
                model: tab.bridge.allowed
                RowLayout {
                    id: entry
                    required property string title
                    required property string key
                    width: parent ? parent.width : 0
                    OneLine {
                        Layout.fillWidth: true
                        text: entry.title
                    }
                    ActionButton {
                        text: "Remove"
                        Accessible.name: "Remove " + entry.title
                        onClicked: tab.bridge.removeAllowed(entry.key)
                    }
                }
            }
        }
    }
}
