// The state of a source: lit when it is on, unlit when it is off, with a warning when it is wanted
// but could not be read.
import QtQuick

Rectangle {
    id: chip

    enum Look { Off, On, Limited }

    required property string name
    required property string symbol
    required property int look
    required property string reason

    readonly property color ink: look === SourceChip.Look.On ? Theme.tealText
                               : look === SourceChip.Look.Limited ? Theme.orangeText
                               : Theme.grey600
    readonly property string state_: look === SourceChip.Look.On ? "On"
                                   : look === SourceChip.Look.Limited ? "Could not look. " + reason
                                   : "Off"

    implicitWidth: row.implicitWidth + Theme.size(18)
    implicitHeight: Theme.size(26)
    radius: height / 2
    color: look === SourceChip.Look.On ? Qt.alpha(Theme.teal, 0.1)
         : look === SourceChip.Look.Limited ? Qt.alpha(Theme.orange, 0.18) : Theme.grey100
    border.width: 1
    border.color: look === SourceChip.Look.On ? Qt.alpha(Theme.teal, 0.45)
                : look === SourceChip.Look.Limited ? Theme.orange : Theme.grey200
    Accessible.role: Accessible.StaticText
    Accessible.name: name + " detection"
    Accessible.description: state_

    Row {
        id: row
        anchors.centerIn: parent
        spacing: Theme.size(5)
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: chip.look === SourceChip.Look.Limited ? "exclamationmark.triangle.fill"
                                                        : chip.symbol
            color: chip.ink
            size: Theme.size(13)
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            text: chip.name
            color: chip.ink
            font { pixelSize: Theme.size(11); bold: chip.look !== SourceChip.Look.Off }
            Accessible.ignored: true
        }
    }
    HoverHandler { id: hover }
    Hint {
        text: chip.name + " detection: " + chip.state_
        isWanted: hover.hovered
    }
}
