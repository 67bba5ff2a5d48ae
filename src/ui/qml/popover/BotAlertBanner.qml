// The alert panel: a bot has been detected. It never takes the focus.
//
// Alert red and white are given; their contrast is 4.2:1, so all text here is opaque and none is
// smaller than 11.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: panel

    required property var bridge
    readonly property int radius: 12
    /// Space for the shadow, if windows can be translucent.
    readonly property int shadowMargin: desktopHints.isTranslucent ? 18 : 0

    title: "Quorva alert"
    width: banner.width + 2 * shadowMargin
    height: banner.height + 2 * shadowMargin
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
           | Qt.WindowDoesNotAcceptFocus | Qt.BypassWindowManagerHint
    color: desktopHints.isTranslucent ? "transparent" : Theme.red

    Repeater {
        model: panel.shadowMargin > 0 ? 12 : 0
        Rectangle {
            required property int index
            x: banner.x - index
            y: banner.y + 4 - index
            width: banner.width + 2 * index
            height: banner.height + 2 * index
            radius: panel.radius + index
            color: Qt.rgba(0, 0, 0, 0.25 / 12 * (12 - index) / 6)
        }
    }
    Rectangle {
        id: banner
        x: panel.shadowMargin
        y: panel.shadowMargin
        width: Theme.size(340)
        height: Math.max(Theme.size(72), row.implicitHeight + Theme.size(24))
        radius: panel.radius
        color: Theme.red
        Accessible.role: Accessible.AlertMessage
        Accessible.name: heading.text
        Accessible.description: product.text + kind.text

        RowLayout {
            id: row
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
            anchors { leftMargin: Theme.size(16); rightMargin: Theme.size(16) }
            spacing: Theme.size(12)
            Rectangle {
                implicitWidth: Theme.size(36)
                implicitHeight: implicitWidth
                radius: width / 2
                // A light ring separates the discs, which have the same red.
                color: Qt.rgba(1, 1, 1, 0.22)
                Rectangle {
                    anchors.centerIn: parent
                    width: Theme.size(20)
                    height: width
                    radius: width / 2
                    color: Theme.red
                    Symbol {
                        anchors.centerIn: parent
                        name: "exclamationmark"
                        color: "#FFFFFF"
                        size: Theme.size(12)
                    }
                }
            }
            Column {
                Layout.fillWidth: true
                spacing: 2
                OneLine {
                    id: heading
                    width: parent.width
                    text: "Bot Detected in " + panel.bridge.platform
                    color: "#FFFFFF"
                    font { bold: true; pixelSize: Theme.size(13) }
                    Accessible.ignored: true
                }
                RowLayout {
                    width: parent.width
                    spacing: 0
                    OneLine {
                        id: product
                        Layout.fillWidth: true
                        Layout.maximumWidth: Math.ceil(implicitWidth)
                        text: panel.bridge.botName
                        color: "#FFFFFF"
                        font { weight: Font.Medium; pixelSize: Theme.size(11) }
                        Accessible.ignored: true
                    }
                    AppText {
                        id: kind
                        text: " • " + panel.bridge.category
                        color: "#FFFFFF"
                        font: product.font
                        Accessible.ignored: true
                    }
                    Item { Layout.fillWidth: true }
                }
            }
            AbstractButton {
                implicitWidth: Theme.size(24)
                implicitHeight: implicitWidth
                focusPolicy: Qt.NoFocus
                hoverEnabled: true
                Accessible.role: Accessible.Button
                Accessible.name: "Close"
                Accessible.onPressAction: if (enabled) clicked()
                onClicked: panel.bridge.dismiss()
                contentItem: Item {
                    Symbol {
                        anchors.centerIn: parent
                        name: "xmark"
                        color: "#FFFFFF"
                        size: Theme.size(12)
                    }
                }
                background: Rectangle {
                    radius: width / 2
                    color: Qt.rgba(1, 1, 1, parent.down ? 0.3 : parent.hovered ? 0.18 : 0)
                }
            }
        }
    }
}
