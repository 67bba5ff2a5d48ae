// Says that a permission is granted.
import QtQuick

Card {
    id: card

    required property string title
    required property string text

    color: Qt.alpha(Theme.teal, 0.09)
    border.color: Qt.alpha(Theme.teal, 0.45)

    FeatureRow {
        symbol: "checkmark.circle.fill"
        title: card.title
        text: card.text
    }
}
