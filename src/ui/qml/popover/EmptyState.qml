// Says that nothing is detected, and what that does not cover.
import QtQuick

Column {
    id: empty

    required property string uncovered

    spacing: Theme.size(6)
    topPadding: Theme.size(16)
    bottomPadding: Theme.size(10)

    Column {
        width: parent.width
        spacing: Theme.size(6)
        Accessible.role: Accessible.StaticText
        Accessible.name: "All clear, no bots detected"
        Accessible.description: empty.uncovered
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "checkmark.shield.fill"
            color: empty.uncovered === "" ? Theme.teal : Theme.grey400
            size: Theme.size(40)
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "All Clear"
            font { bold: true; pixelSize: Theme.size(16) }
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "No AI recording bots detected across all sources"
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
    }
    Uncovered { text: empty.uncovered }
}
