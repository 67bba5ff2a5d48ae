// Shows where the keyboard is.
import QtQuick

Rectangle {
    required property Item target

    anchors.fill: target
    anchors.margins: -2
    visible: target.visualFocus
    color: "transparent"
    radius: Theme.radius
    border { width: 2; color: Theme.blue }
}
