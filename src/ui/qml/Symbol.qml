// A symbol by its name, in one colour. For the eye only: what it stands beside says the same.
import QtQuick
import QtQuick.Window

Image {
    id: symbol

    required property string name
    property color color: Theme.text
    property real size: Theme.size(16)

    width: size
    height: size
    sourceSize: Qt.size(size * Screen.devicePixelRatio, size * Screen.devicePixelRatio)
    source: name === "" ? "" : "image://symbol/" + name + "/" + hex(color)
    Accessible.ignored: true

    function hex(colour) {
        return colour.toString().slice(-6)
    }
}
