// A symbol by its name, in one colour. Hidden from screen readers: the text beside it says the
// same.
import QtQuick
import QtQuick.Window

Item {
    id: symbol

    required property string name
    property color color: Theme.text
    property real size: Theme.size(16)
    readonly property real dots: Math.ceil(size * Screen.devicePixelRatio)

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    Image {
        anchors.fill: parent
        sourceSize: Qt.size(symbol.dots, symbol.dots)
        source: symbol.name === "" ? "" : "image://symbol/" + symbol.name + "/"
                                          + symbol.color.toString().slice(-6)
        Accessible.ignored: true
    }
}
