// A button with a text and an optional symbol.
import QtQuick
import QtQuick.Controls.Basic

Button {
    id: button

    enum Kind { Plain, Primary, Danger, Link }

    property string symbol
    property int kind: ActionButton.Kind.Plain
    property string hint
    property real textSize: Theme.size(12)
    readonly property color ink: {
        switch (kind) {
        case ActionButton.Kind.Primary: return "#FFFFFF"
        case ActionButton.Kind.Danger: return Theme.redText
        case ActionButton.Kind.Link: return Theme.blueText
        }
        return Theme.text
    }
    readonly property color fill: {
        switch (kind) {
        case ActionButton.Kind.Primary: return Theme.slate
        case ActionButton.Kind.Danger: return Theme.lightRed
        case ActionButton.Kind.Link: return "transparent"
        }
        return Theme.surface
    }

    padding: Theme.size(6)
    leftPadding: kind === ActionButton.Kind.Link ? Theme.size(4) : Theme.size(12)
    rightPadding: leftPadding
    opacity: enabled ? 1 : 0.55
    hoverEnabled: true
    Accessible.name: text
    Accessible.description: hint
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        readonly property real symbolWidth: button.symbol !== "" ? button.textSize + 2 + row.spacing : 0

        implicitWidth: Math.ceil(symbolWidth + label.implicitWidth)
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.size(6)
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.symbol !== ""
                name: button.symbol
                color: button.ink
                size: button.textSize + 2
            }
            AppText {
                id: label
                anchors.verticalCenter: parent.verticalCenter
                // Text wider than the button is wrapped.
                width: Math.min(Math.ceil(implicitWidth),
                                button.availableWidth - parent.parent.symbolWidth)
                horizontalAlignment: Text.AlignHCenter
                text: button.text
                color: button.ink
                font.pixelSize: button.textSize
                font.bold: button.kind !== ActionButton.Kind.Link
                font.underline: button.kind === ActionButton.Kind.Link && button.hovered
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        implicitHeight: Theme.size(28)
        radius: Theme.radius - 3
        color: button.down ? Qt.darker(button.fill, 1.12)
                           : button.hovered ? Qt.darker(button.fill, 1.05) : button.fill
        border.width: button.kind === ActionButton.Kind.Plain
                      || button.kind === ActionButton.Kind.Danger ? 1 : 0
        border.color: button.kind === ActionButton.Kind.Danger ? Theme.redLine : Theme.grey300
        FocusRing { target: button }
    }
}
