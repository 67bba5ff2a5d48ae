// A box around related items.
import QtQuick

Rectangle {
    id: card

    default property alias contents: column.data
    property alias spacing: column.spacing
    property real padding: Theme.size(12)

    implicitHeight: column.implicitHeight + 2 * padding
    radius: Theme.radius
    color: Theme.surface
    border { width: 1; color: Theme.grey200 }

    Column {
        id: column
        x: card.padding
        y: card.padding
        width: card.width - 2 * card.padding
        spacing: Theme.size(8)
    }
}
