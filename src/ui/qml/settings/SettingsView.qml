// The settings window: four tabs.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: settings

    required property var bridge
    property alias currentTab: bar.currentIndex

    title: "Quorva Settings"
    width: Math.min(Theme.size(560), Screen.desktopAvailableWidth)
    height: Math.min(Theme.size(600), Screen.desktopAvailableHeight - 40)
    minimumWidth: Math.min(Theme.size(440), width)
    minimumHeight: 300
    color: Theme.grey50

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        focus: true
        Keys.onEscapePressed: settings.close()

        TabBar {
            id: bar
            Layout.fillWidth: true
            padding: Theme.size(8)
            spacing: Theme.size(6)
            Accessible.name: "Settings"
            background: Rectangle {
                color: Theme.surface
                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: 1
                    color: Theme.grey200
                }
            }
            SettingsTabButton { text: "General"; symbol: "gear" }
            SettingsTabButton { text: "Detection"; symbol: "magnifyingglass" }
            SettingsTabButton { text: "Objection"; symbol: "hand.raised" }
            SettingsTabButton { text: "About"; symbol: "info.circle" }
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: bar.currentIndex
            GeneralSettingsView { bridge: settings.bridge }
            DetectionSettingsView { bridge: settings.bridge }
            ObjectionSettingsView { bridge: settings.bridge }
            AboutView { bridge: settings.bridge }
        }
    }
}
