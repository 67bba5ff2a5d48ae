// Asks for a missing permission.
import QtQuick
import QtQuick.Layouts

Card {
    id: card

    required property string symbol
    required property string title
    required property string text
    required property string action
    required property string actionSymbol
    required property string actionName
    property string tip
    property string help
    signal pressed()

    color: Qt.alpha(Theme.blue, 0.06)
    border.color: Qt.alpha(Theme.blue, 0.28)
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    RowLayout {
        width: parent.width
        spacing: Theme.size(8)
        Symbol {
            name: card.symbol
            color: Theme.blueText
            size: Theme.size(18)
            Layout.alignment: Qt.AlignTop
        }
        AppText {
            Layout.fillWidth: true
            text: card.title
            font.bold: true
        }
    }
    AppText {
        width: parent.width
        text: card.text
        color: Theme.secondaryText
        font.pixelSize: Theme.size(12)
    }
    NoteLine {
        visible: card.tip !== ""
        symbol: "info.circle.fill"
        text: card.tip
    }
    ActionButton {
        width: Math.min(implicitWidth, parent.width)
        text: card.action
        symbol: card.actionSymbol
        kind: ActionButton.Kind.Primary
        Accessible.name: card.actionName
        onClicked: card.pressed()
    }
    AppText {
        width: parent.width
        visible: card.help !== ""
        text: card.help
        font.pixelSize: Theme.size(11)
    }
}
