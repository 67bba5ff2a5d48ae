// A group of results of the first scan.
import QtQuick

Card {
    id: group

    required property string title
    required property var lists

    visible: lists.some(list => list.count > 0)
    spacing: Theme.size(5)

    AppText {
        width: parent.width
        text: group.title
        font { bold: true; pixelSize: Theme.size(12) }
    }
    Repeater {
        model: group.lists
        Column {
            id: rows
            required property var modelData
            width: parent ? parent.width : 0
            spacing: Theme.size(3)
            Repeater {
                model: rows.modelData
                OneLine {
                    required property string title
                    required property string subtitle
                    required property string detail
                    required property string spoken
                    width: parent ? parent.width : 0
                    text: [title, subtitle, detail].filter(part => part !== "").join(" · ")
                    font.pixelSize: Theme.size(12)
                    Accessible.name: spoken
                }
            }
        }
    }
}
