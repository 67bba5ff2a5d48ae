// A tab of the settings.
import QtQuick

ScrollArea {
    required property var bridge

    margin: Theme.size(20)
    spacing: Theme.size(18)
}
