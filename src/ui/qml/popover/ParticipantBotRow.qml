// A bot among the participants of a meeting.
import QtQuick

DetectionRow {
    id: row

    required property string subtitle
    required property string detail
    required property string badge ///< when it was last seen, if that is a while ago
    signal objected()

    line: badge === "" ? subtitle + " · " + detail : subtitle + "\n" + detail + " · " + badge

    ActionButton {
        text: "Object"
        kind: ActionButton.Kind.Danger
        Accessible.name: "Object to " + row.title
        onClicked: row.objected()
    }
}
