// A square button below the detections.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: button

    required property string symbol
    required property string label
    property color tint: Theme.slate
    property int badge: 0
    property string name: label
    property string hint
    readonly property bool isHovered: hovered

    implicitHeight: Theme.size(58)
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: hint
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Column {
            anchors.centerIn: parent
            width: parent.width
            spacing: Theme.size(5)
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: button.symbol
                color: button.tint
                size: Theme.size(18)
            }
            AppText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: button.label
                font.pixelSize: Theme.size(11)
                font.bold: true
                Accessible.ignored: true
            }
        }
        Rectangle {
            visible: button.badge > 0
            anchors { right: parent.right; top: parent.top }
            width: Math.max(count.implicitWidth + 8, height)
            height: count.implicitHeight + 4
            radius: height / 2
            color: Theme.redText
            AppText {
                id: count
                anchors.centerIn: parent
                text: button.badge
                color: "#FFFFFF"
                font { bold: true; pixelSize: Theme.size(10) }
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.down ? Qt.alpha(button.tint, 0.2)
                           : button.isHovered ? Qt.alpha(button.tint, 0.1) : Theme.surface
        border { width: 1; color: button.isHovered ? Qt.alpha(button.tint, 0.35) : Theme.grey200 }
        FocusRing { target: button }
    }
}
