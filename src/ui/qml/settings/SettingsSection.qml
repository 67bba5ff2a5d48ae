// A section of a settings tab: a heading and a box.
import QtQuick

Column {
    id: section

    required property string title
    default property alias contents: card.contents

    width: parent ? parent.width : 0
    spacing: Theme.size(6)
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    AppText {
        width: parent.width
        visible: section.title !== ""
        text: section.title
        font { bold: true; pixelSize: Theme.size(13) }
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Card {
        id: card
        width: parent.width
        spacing: Theme.size(10)
    }
}
