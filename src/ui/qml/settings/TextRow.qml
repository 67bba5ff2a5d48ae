// A text that the user types, with what it is for, and what is wrong with it.
import QtQuick
import QtQuick.Controls.Basic

Column {
    id: row

    required property string label
    property string description
    property string placeholder
    property string problem
    /// The current text. It is shown unless what was typed could not be taken.
    required property string value
    signal entered(string text)

    width: parent ? parent.width : implicitWidth
    spacing: Theme.size(4)
    onValueChanged: field.text = value

    AppText {
        width: parent.width
        text: row.label
        Accessible.ignored: true
    }
    TextField {
        id: field
        width: parent.width
        text: row.value
        placeholderText: row.placeholder
        placeholderTextColor: Theme.grey500
        color: Theme.text
        selectedTextColor: "#FFFFFF"
        selectionColor: Theme.tealText
        font.pixelSize: Theme.size(13)
        maximumLength: 20000
        horizontalAlignment: TextInput.AlignLeft // set explicitly, as in AppText
        leftPadding: Theme.size(8)
        rightPadding: Theme.size(8)
        topPadding: Theme.size(5)
        bottomPadding: Theme.size(5)
        Accessible.name: row.label
        Accessible.description: row.description
        onEditingFinished: {
            if (text === row.value && row.problem === "")
                return
            row.entered(text)
            if (row.problem === "")
                text = row.value
        }
        background: Rectangle {
            radius: Theme.radius
            color: Theme.grey50
            border {
                width: field.activeFocus ? 2 : 1
                color: field.activeFocus ? Theme.blue : Theme.grey400
            }
        }
    }
    NoteLine {
        visible: row.problem !== ""
        symbol: "exclamationmark.triangle.fill"
        text: row.problem
        color: Theme.orangeText
    }
    AppText {
        width: parent.width
        visible: row.description !== ""
        text: row.description
        color: Theme.secondaryText
        font.pixelSize: Theme.size(11)
        Accessible.ignored: true
    }
}
