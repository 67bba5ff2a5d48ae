// The calendar accounts, and how to add one.
import QtQuick
import QtQuick.Layouts

Card {
    id: card

    required property var bridge
    property bool showInternetAccountsGuide: true

    FeatureRow {
        symbol: "calendar.badge.plus"
        title: "Step 2: Connect Your Work Calendars"
        text: "Quorva scans calendars through macOS Internet Accounts. To scan your work meetings, add your Google Workspace or Outlook account in System Settings."
        tint: Theme.orange
        ink: Theme.orangeText
    }
    RowLayout {
        width: parent.width
        AppText {
            Layout.fillWidth: true
            text: "CONNECTED CALENDARS"
            color: Theme.secondaryText
            font { bold: true; pixelSize: Theme.size(11); letterSpacing: 0.5 }
        }
        IconButton {
            symbol: "arrow.clockwise"
            name: "Refresh calendar accounts"
            onClicked: card.bridge.refreshAccounts()
        }
    }
    Column {
        width: parent.width
        spacing: Theme.size(4)
        Accessible.role: Accessible.List
        Accessible.name: "Connected calendars"
        Repeater {
            model: card.bridge.accounts
            RowLayout {
                id: account
                required property string title
                required property string subtitle
                required property string badge
                required property string spoken
                width: parent ? parent.width : 0
                spacing: Theme.size(8)
                Accessible.role: Accessible.ListItem
                Accessible.name: spoken
                Symbol {
                    name: account.badge
                    color: Theme.tealText
                    size: Theme.size(15)
                }
                OneLine {
                    Layout.fillWidth: true
                    text: account.title
                    font.pixelSize: Theme.size(12)
                    Accessible.ignored: true
                }
                AppText {
                    text: account.subtitle
                    color: Theme.secondaryText
                    font.pixelSize: Theme.size(11)
                    Accessible.ignored: true
                }
            }
        }
    }
    NoteLine {
        visible: card.bridge.accountsRefreshed && card.bridge.accounts.count === 0
        symbol: "exclamationmark.triangle.fill"
        text: "No calendars found. Add a calendar account in Internet Accounts below."
        color: Theme.orangeText
    }
    NoteLine {
        visible: card.bridge.accountsRefreshed && card.bridge.accounts.count > 0
        symbol: card.bridge.hasAllProviders ? "checkmark.shield.fill" : "info.circle.fill"
        text: card.bridge.coverage
        color: card.bridge.hasAllProviders ? Theme.tealText : Theme.blueText
    }
    Column {
        width: parent.width
        visible: card.showInternetAccountsGuide
        spacing: Theme.size(4)
        AppText {
            width: parent.width
            text: "How it works:"
            font { bold: true; pixelSize: Theme.size(12) }
        }
        Repeater {
            model: ["Open Internet Accounts in System Settings",
                    "Click \"Add Account\" and choose Google or Microsoft Exchange",
                    "Sign in and check \"Calendar\" when asked",
                    "Your work calendar appears here automatically"]
            RowLayout {
                id: line
                required property int index
                required property string modelData
                width: parent ? parent.width : 0
                spacing: Theme.size(8)
                Rectangle {
                    implicitWidth: Theme.size(18)
                    implicitHeight: implicitWidth
                    radius: width / 2
                    color: Theme.grey200
                    Layout.alignment: Qt.AlignTop
                    AppText {
                        anchors.centerIn: parent
                        text: line.index + 1
                        font { bold: true; pixelSize: Theme.size(10) }
                    }
                }
                AppText {
                    Layout.fillWidth: true
                    text: line.modelData
                    font.pixelSize: Theme.size(12)
                }
            }
        }
    }
    NoteLine {
        symbol: "lightbulb.fill"
        text: "Tip: When Google asks for permissions, you only need to check \"Calendar\" -- uncheck Mail, Contacts, and Notes if you prefer."
    }
    ActionButton {
        width: Math.min(implicitWidth, parent.width)
        text: "Open Internet Accounts"
        symbol: "arrow.right.circle.fill"
        onClicked: card.bridge.openInternetAccounts()
    }
    AppText {
        width: parent.width
        visible: text !== ""
        text: card.bridge.accountsHelp
        font.pixelSize: Theme.size(11)
    }
}
