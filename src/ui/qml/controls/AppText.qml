// A text, always plain: a name that looks like markup is shown as it is.
import QtQuick

Text {
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    // Set explicitly: to guess it, Qt 6.4 asks Wayland's input method, and crashes in a session
    // without keyboard and pointer. Arabic names begin at the same edge as others.
    horizontalAlignment: Text.AlignLeft
    color: Theme.text
    font.pixelSize: Theme.size(13)
    lineHeight: 1.1
    // Qt exposes a text to screen readers only on request. A control ignores texts that its own
    // name includes.
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
