// The headline while nothing is detected: how far that can be relied on, and what it does not cover.
import QtQuick

Column {
    id: empty

    required property int verdict
    required property string headline
    required property string explanation
    required property string uncovered

    spacing: Theme.size(6)
    topPadding: Theme.size(16)
    bottomPadding: Theme.size(10)

    Column {
        width: parent.width
        spacing: Theme.size(6)
        Accessible.role: Accessible.StaticText
        Accessible.name: empty.verdict === Theme.Verdict.Clear ? "All clear, no bots detected"
                                                               : empty.headline
        Accessible.description: empty.uncovered === "" ? empty.explanation
                                                       : empty.explanation + ". " + empty.uncovered
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: Theme.verdictSymbol(empty.verdict)
            color: Theme.verdictColor(empty.verdict)
            size: Theme.size(40)
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: empty.headline
            font { bold: true; pixelSize: Theme.size(16) }
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: empty.explanation
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
    }
    Uncovered { text: empty.uncovered }
}
