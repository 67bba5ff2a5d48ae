// A symbol in a tinted square, a title, an optional tag, and a text.
import QtQuick
import QtQuick.Layouts

RowLayout {
    id: feature

    required property string symbol
    required property string title
    required property string text
    property string tag
    property color tint: Theme.teal
    property color ink: Theme.tealText

    width: parent ? parent.width : implicitWidth
    spacing: Theme.size(12)

    Rectangle {
        implicitWidth: Theme.size(36)
        implicitHeight: implicitWidth
        radius: Theme.radius - 2
        color: Qt.alpha(feature.tint, 0.14)
        Layout.alignment: Qt.AlignTop
        Symbol {
            anchors.centerIn: parent
            name: feature.symbol
            color: feature.ink
            size: Theme.size(18)
        }
    }
    Column {
        Layout.fillWidth: true
        spacing: 2
        RowLayout {
            width: parent.width
            spacing: Theme.size(8)
            AppText {
                text: feature.title
                font.bold: true
            }
            Rectangle {
                visible: feature.tag !== ""
                implicitWidth: tagText.implicitWidth + Theme.size(12)
                implicitHeight: tagText.implicitHeight + Theme.size(3)
                radius: height / 2
                color: Qt.alpha(feature.tint, 0.14)
                AppText {
                    id: tagText
                    anchors.centerIn: parent
                    text: feature.tag
                    color: feature.ink
                    font { bold: true; pixelSize: Theme.size(10) }
                }
            }
            Item { Layout.fillWidth: true }
        }
        AppText {
            width: parent.width
            text: feature.text
            color: Theme.secondaryText
            font.pixelSize: Theme.size(12)
        }
    }
}
