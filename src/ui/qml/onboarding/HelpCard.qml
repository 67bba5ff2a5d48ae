// What the user must do in another program.
import QtQuick

Card {
    id: card

    required property string title
    required property string text
    required property string action
    property string help
    signal pressed()

    color: Qt.alpha(Theme.blue, 0.06)
    border.color: Qt.alpha(Theme.blue, 0.28)

    NoteLine {
        symbol: "info.circle.fill"
        text: card.title
        color: Theme.blueText
        inkOfText: Theme.text
        textSize: Theme.size(13)
    }
    AppText {
        width: parent.width
        text: card.text
        color: Theme.secondaryText
        font.pixelSize: Theme.size(12)
    }
    ActionButton {
        width: Math.min(implicitWidth, parent.width)
        text: card.action
        symbol: "gear"
        onClicked: card.pressed()
    }
    AppText {
        width: parent.width
        visible: text !== ""
        text: card.help
        font.pixelSize: Theme.size(11)
    }
}
