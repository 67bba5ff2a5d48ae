// A note-taker or recorder that runs on this computer.
import QtQuick

DetectionRow {
    required property string subtitle

    line: subtitle
    accent: Theme.yellow
}
