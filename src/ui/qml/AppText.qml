// A text. Plain: a name that looks like markup is shown as it is.
import QtQuick

Text {
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    color: Theme.text
    font.pixelSize: Theme.size(13)
    lineHeight: 1.1
}
