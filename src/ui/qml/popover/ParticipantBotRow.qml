// A bot among the participants of a meeting.
import QtQuick

DetectionRow {
    id: row

    required property string subtitle
    required property string detail
    signal objected()

    line: detail === "" ? subtitle : subtitle + " · " + detail

    ActionButton {
        text: "Object"
        kind: ActionButton.Kind.Danger
        Accessible.name: "Object to " + row.title
        onClicked: row.objected()
    }
}
