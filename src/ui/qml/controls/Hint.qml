// A tooltip. Created on demand, so that rows without it cost nothing.
import QtQuick
import QtQuick.Controls.Basic

Loader {
    id: hint

    required property string text
    required property bool isWanted

    active: isWanted && text !== ""
    sourceComponent: ToolTip {
        id: tip
        visible: true
        delay: 600
        text: hint.text
        margins: 6
        contentItem: AppText {
            text: tip.text
            color: "#FFFFFF"
            font.pixelSize: Theme.size(11)
            width: Math.min(implicitWidth, Theme.size(280))
        }
        implicitWidth: Math.min(measure.implicitWidth, Theme.size(280)) + 18
        padding: 8
        background: Rectangle {
            radius: 6
            color: Theme.slate
        }
        AppText {
            id: measure
            visible: false
            wrapMode: Text.NoWrap
            text: tip.text
            font.pixelSize: Theme.size(11)
        }
    }
}
