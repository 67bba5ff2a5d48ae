// A card for each missing permission.
import QtQuick

Column {
    id: prompts

    required property var bridge

    spacing: Theme.size(8)
    visible: bridge.needsCalendarAccess || bridge.needsCalendarAccount || bridge.needsAccessibility

    PermissionCard {
        width: parent.width
        visible: prompts.bridge.needsCalendarAccess
        symbol: "calendar.badge.checkmark"
        title: "Enable calendar scanning"
        text: "Read-only access to spot bots invited to your meetings. Calendar data never leaves your device."
        action: "Allow Calendar Access"
        actionSymbol: "lock.shield.fill"
        actionName: "Allow read-only calendar access"
        onPressed: prompts.bridge.allowCalendarAccess()
    }
    PermissionCard {
        width: parent.width
        visible: prompts.bridge.needsCalendarAccount
        symbol: "calendar.badge.plus"
        title: "Connect your work calendar"
        text: "Add your Google or Outlook account in System Settings so Quorva can scan work meetings for bots."
        tip: "Tip: When Google asks for permissions, you only need to check Calendar."
        action: "Open Internet Accounts"
        actionSymbol: "arrow.right.circle.fill"
        actionName: "Open Internet Accounts in System Settings"
        help: prompts.bridge.accountsHelp
        onPressed: prompts.bridge.openInternetAccounts()
    }
    PermissionCard {
        width: parent.width
        visible: prompts.bridge.needsAccessibility
        symbol: "person.2.fill"
        title: "Enable live meeting detection"
        text: "Reads participant lists in Zoom, Teams, and Meet to spot bots in real-time. No screen recording."
        action: "Open Accessibility Settings"
        actionSymbol: "gear"
        actionName: "Open accessibility settings"
        help: prompts.bridge.accessibilityHelp
        onPressed: prompts.bridge.openAccessibilitySettings()
    }
}
