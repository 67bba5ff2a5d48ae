// A box with a title and short lines, each after a symbol.
import QtQuick

Card {
    id: box

    required property string title
    required property string symbol
    required property color tint
    required property var lines

    spacing: Theme.size(5)

    AppText {
        width: parent.width
        text: box.title
        color: Theme.secondaryText
        font { bold: true; pixelSize: Theme.size(11); letterSpacing: 0.5 }
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Repeater {
        model: box.lines
        NoteLine {
            required property string modelData
            symbol: box.symbol
            color: box.tint
            text: modelData
            textSize: Theme.size(12)
            inkOfText: Theme.text
        }
    }
}
