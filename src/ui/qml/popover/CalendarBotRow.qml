// A bot that is invited to a meeting.
import QtQuick

DetectionRow {
    id: row

    required property string subtitle
    required property string detail
    required property string badge
    signal objected()
    signal dismissed()

    line: subtitle + "\n" + (badge === "now" ? "Now" : "In " + badge) + " · " + detail
    accent: Theme.orange

    ActionButton {
        text: "Object"
        kind: ActionButton.Kind.Danger
        Accessible.name: "Object to " + row.title
        onClicked: row.objected()
    }
    IconButton {
        symbol: "xmark"
        name: "Dismiss " + row.title
        symbolSize: Theme.size(12)
        onClicked: row.dismissed()
    }
}
