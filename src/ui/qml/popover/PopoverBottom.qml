// The bottom of the popover: actions, the time of the last scan, and links.
import QtQuick
import QtQuick.Layouts

Column {
    id: bottom

    required property var bridge

    spacing: Theme.size(10)

    RowLayout {
        width: parent.width
        spacing: Theme.size(8)
        QuickActionButtonView {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "arrow.clockwise"
            label: "Refresh"
            name: "Refresh all scans"
            onClicked: bottom.bridge.refresh()
        }
        QuickActionButtonView {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "clock.arrow.circlepath"
            label: "History"
            name: "View detection history"
            onClicked: bottom.bridge.showHistory()
        }
        QuickActionButtonView {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            visible: bottom.bridge.threatCount > 0
            symbol: "hand.raised.fill"
            label: "Object"
            tint: Theme.red
            name: "Object to AI recording"
            hint: "Copies non-consent statement to clipboard"
            onClicked: bottom.bridge.objectToAny()
        }
    }
    RowLayout {
        width: parent.width
        spacing: Theme.size(8)
        Item { Layout.fillWidth: true }
        ScanningDots { visible: bottom.bridge.isScanning }
        AppText {
            text: bottom.bridge.isScanning ? "Scanning" : bottom.bridge.lastScan
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
        }
        Item { Layout.fillWidth: true }
    }
    Rectangle {
        width: parent.width
        height: 1
        color: Theme.grey200
    }
    RowLayout {
        width: parent.width
        spacing: Theme.size(4)
        IconButton {
            symbol: "gear"
            name: "Open settings"
            onClicked: bottom.bridge.openSettings()
        }
        Item { Layout.fillWidth: true }
        IconButton {
            symbol: "square.and.arrow.up"
            name: "Share Quorva with a colleague"
            onClicked: bottom.bridge.share()
        }
        Item { Layout.fillWidth: true }
        IconButton {
            symbol: "power"
            name: "Quit Quorva"
            onClicked: bottom.bridge.quit()
        }
    }
}
