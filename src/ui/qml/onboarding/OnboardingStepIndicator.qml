// The progress of the first run.
import QtQuick

Column {
    id: indicator

    required property int total
    required property int current

    spacing: Theme.size(6)
    Accessible.role: Accessible.StaticText
    Accessible.name: label.text

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: Theme.size(5)
        Repeater {
            model: indicator.total
            Rectangle {
                required property int index
                width: Theme.size(index + 1 === indicator.current ? 20 : 8)
                height: Theme.size(5)
                radius: height / 2
                color: index < indicator.current ? Theme.teal : Theme.grey300
            }
        }
    }
    AppText {
        id: label
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Step " + indicator.current + " of " + indicator.total
        color: Theme.secondaryText
        font.pixelSize: Theme.size(11)
        Accessible.ignored: true
    }
}
