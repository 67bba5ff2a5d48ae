// A word that works as a link.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: link

    property real textSize: Theme.size(11)

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Link
    Accessible.name: text
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    contentItem: AppText {
        text: link.text
        color: Theme.blueText
        font { pixelSize: link.textSize; underline: true }
        Accessible.ignored: true
    }
    background: Item {
        FocusRing { target: link; radius: 4 }
    }
}
