// A switch and what it switches.
import QtQuick
import QtQuick.Controls.Basic

Switch {
    id: toggle

    property string description
    /// The current state; the switch returns to it if pressing it had no effect.
    required property bool isOn
    signal switched(bool isOn)

    width: parent ? parent.width : implicitWidth
    padding: 0
    checked: isOn
    Accessible.name: text
    Accessible.description: description
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: press()
    Accessible.onToggleAction: press()
    Keys.onReturnPressed: press()
    onToggled: {
        toggle.switched(checked)
        checked = Qt.binding(() => toggle.isOn)
    }

    function press() {
        toggle.toggle()
        toggle.toggled()
    }

    indicator: Rectangle {
        x: toggle.width - width
        y: Theme.size(1)
        implicitWidth: Theme.size(36)
        implicitHeight: Theme.size(20)
        radius: height / 2
        color: toggle.checked ? Theme.tealText : Theme.grey400
        Rectangle {
            x: toggle.checked ? parent.width - width - 2 : 2
            y: 2
            width: parent.height - 4
            height: width
            radius: width / 2
            color: "#FFFFFF"
            Behavior on x { NumberAnimation { duration: Theme.duration(120) } }
        }
        FocusRing { target: toggle; radius: parent.radius + 2 }
    }
    contentItem: Column {
        rightPadding: Theme.size(48)
        spacing: 2
        AppText {
            width: parent.width - parent.rightPadding
            text: toggle.text
            Accessible.ignored: true
        }
        AppText {
            width: parent.width - parent.rightPadding
            visible: text !== ""
            text: toggle.description
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
            Accessible.ignored: true
        }
    }
}
