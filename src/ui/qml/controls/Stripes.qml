// The five stripes of the brand.
import QtQuick

Item {
    id: stripes

    property real unit: 1
    property bool isAnimated: false
    readonly property var widths: [1.0, 0.85, 0.7, 0.55, 0.4]
    readonly property var colours: [Theme.red, Theme.orange, Theme.yellow,
                                    Qt.alpha(Theme.teal, 0.85), Qt.alpha(Theme.slate, 0.5)]

    implicitWidth: 12 * unit
    implicitHeight: 16 * unit
    Accessible.ignored: true

    Repeater {
        model: 5
        Rectangle {
            required property int index
            y: 3.5 * stripes.unit * index
            width: 12 * stripes.unit * stripes.widths[index]
            height: 2 * stripes.unit
            radius: stripes.unit
            color: stripes.colours[index]
            NumberAnimation on width {
                running: stripes.isAnimated && !Theme.reducesMotion
                from: 0
                to: 12 * stripes.unit * stripes.widths[index]
                duration: 300 + 120 * index
                easing.type: Easing.OutCubic
            }
        }
    }
}
