// A legal document, section by section.
import QtQuick

Sheet {
    id: document

    /// Sections: an id, an optional heading, and a body.
    required property var sections

    ScrollArea {
        anchors.fill: parent
        margin: Theme.size(18)
        spacing: Theme.size(14)
        isText: true
        Repeater {
            model: document.sections
            Column {
                id: section
                required property var modelData
                width: parent ? parent.width : 0
                spacing: Theme.size(4)
                AppText {
                    width: parent.width
                    visible: text !== ""
                    text: section.modelData.heading || ""
                    font { bold: true; pixelSize: Theme.size(14) }
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                AppText {
                    width: parent.width
                    text: section.modelData.body
                    color: Theme.secondaryText
                    font.pixelSize: Theme.size(12)
                    lineHeight: 1.2
                }
            }
        }
    }
}
