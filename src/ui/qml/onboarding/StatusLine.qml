// One line that says whether something is on.
import QtQuick

NoteLine {
    required property bool isOn

    symbol: isOn ? "checkmark.circle.fill" : "xmark.circle.fill"
    color: isOn ? Theme.tealText : Theme.grey500
    inkOfText: Theme.text
    textSize: Theme.size(12)
}
