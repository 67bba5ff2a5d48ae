// Three dots that pulse during a scan; static if the user wants less motion.
import QtQuick

Row {
    id: dots

    spacing: Theme.size(4)
    Accessible.role: Accessible.Indicator
    Accessible.name: "Scanning"

    Repeater {
        model: 3
        Rectangle {
            id: dot
            required property int index
            width: Theme.size(5)
            height: width
            radius: width / 2
            color: Theme.teal
            SequentialAnimation on opacity {
                running: dots.visible && !Theme.reducesMotion
                loops: Animation.Infinite
                PauseAnimation { duration: 150 * dot.index }
                NumberAnimation { to: 0.25; duration: 300 }
                NumberAnimation { to: 1; duration: 300 }
                PauseAnimation { duration: 150 * (3 - dot.index) }
            }
        }
    }
}
