// A text. Plain: a name that looks like markup is shown as it is.
import QtQuick

Text {
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    // Said, and not left to Qt: to guess it, Qt 6.4 asks the input method of Wayland, and ends where a
    // session has neither keyboard nor pointer. A name in Arabic begins where the others do.
    horizontalAlignment: Text.AlignLeft
    color: Theme.text
    font.pixelSize: Theme.size(13)
    lineHeight: 1.1
    // Qt tells screen readers of a text only when it is said so. What a control says under its own
    // name is ignored there.
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
