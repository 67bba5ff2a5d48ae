// The popover of the tray icon: the program's main window.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: popover

    required property var bridge
    property int maximumContentHeight: 720
    readonly property real margin: Theme.size(14)
    readonly property real fixedHeight: header.implicitHeight + bottom.implicitHeight + 3 * margin
                                        + Theme.size(8)

    title: "Quorva"
    width: Theme.size(360)
    height: Math.min(Math.max(fixedHeight + middle.implicitHeight, bridge.showsHistory ? Theme.size(460) : 0),
                     Theme.size(720), maximumContentHeight)
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    color: desktopHints.isTranslucent ? "transparent" : Theme.grey50

    Rectangle {
        anchors.fill: parent
        radius: desktopHints.isTranslucent ? 12 : 0
        color: Theme.grey50
        border { width: 1; color: Theme.grey300 }
        focus: true
        Keys.onEscapePressed: popover.bridge.close()
        Accessible.role: Accessible.Pane
        Accessible.name: popover.title

        ColumnLayout {
            anchors.fill: parent
            spacing: 0
            PopoverHeader {
                id: header
                bridge: popover.bridge
                Layout.fillWidth: true
                Layout.margins: popover.margin
                Layout.bottomMargin: Theme.size(8)
            }
            ScrollArea {
                id: middle
                spacing: Theme.size(10)
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: 1
                Layout.rightMargin: 1
                Item { width: 1; height: 2 }
                PopoverPrompts {
                    bridge: popover.bridge
                    x: popover.margin
                    width: parent.width - 2 * x
                }
                Flow {
                    x: popover.margin
                    width: parent.width - 2 * x
                    spacing: Theme.size(6)
                    Repeater {
                        model: popover.bridge.chips
                        SourceChip {
                            required property var modelData
                            name: modelData.name
                            symbol: modelData.symbol
                            look: modelData.look
                            reason: modelData.reason
                        }
                    }
                }
                PopoverDetections {
                    bridge: popover.bridge
                    x: popover.margin
                    width: parent.width - 2 * x
                }
                Item { width: 1; height: 2 }
            }
            PopoverBottom {
                id: bottom
                bridge: popover.bridge
                Layout.fillWidth: true
                Layout.margins: popover.margin
            }
        }
        Toast {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            anchors.margins: popover.margin
            isShown: popover.bridge.showsObjectionToast
            symbol: "checkmark.circle.fill"
            title: "Objection Filed"
            text: popover.bridge.objectionToast
        }
        Toast {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            anchors.margins: popover.margin
            isShown: popover.bridge.showsShareToast
            symbol: "square.and.arrow.up"
            title: "Recommendation Copied"
            text: "Paste into Slack, email, or text"
        }
    }
    DetectionLogSheet {
        entries: popover.bridge.history
        visible: popover.bridge.showsHistory
        // Set when the sheet begins to close: otherwise any other change of the state would open it
        // again.
        onAboutToHide: if (popover.bridge.showsHistory) popover.bridge.closeHistory()
    }
}
