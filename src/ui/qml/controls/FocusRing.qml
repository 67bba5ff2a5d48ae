// Shows the keyboard focus.
import QtQuick

Rectangle {
    required property Item target

    anchors.fill: parent
    anchors.margins: -2
    visible: target.visualFocus
    color: "transparent"
    radius: Theme.radius
    border { width: 2; color: Theme.blue }
}
