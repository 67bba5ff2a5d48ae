// A button with a symbol only; its name is in the tooltip and read by screen readers.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: button

    required property string symbol
    required property string name
    property string hint
    property color color: Theme.grey600
    property real symbolSize: Theme.size(15)

    implicitWidth: Theme.size(28)
    implicitHeight: Theme.size(28)
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: hint
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            color: button.color
            size: button.symbolSize
        }
    }
    background: Rectangle {
        radius: Theme.radius - 3
        color: button.down ? Theme.grey300 : button.hovered ? Theme.grey200 : "transparent"
        FocusRing { target: button }
    }
    Hint {
        text: button.name
        isWanted: button.hovered
    }
}
