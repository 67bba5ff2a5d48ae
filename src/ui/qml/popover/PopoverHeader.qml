// The top of the popover: the product, its state, and the monitoring switch.
import QtQuick
import QtQuick.Layouts

RowLayout {
    id: header

    required property var bridge

    spacing: Theme.size(8)

    Stripes { unit: Theme.size(20) / 16 }
    AppText {
        text: "Quorva"
        font { bold: true; pixelSize: Theme.size(16) }
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Rectangle {
        implicitWidth: beta.implicitWidth + Theme.size(10)
        implicitHeight: beta.implicitHeight + Theme.size(2)
        radius: 4
        color: Theme.grey200
        AppText {
            id: beta
            anchors.centerIn: parent
            text: "Beta"
            color: Theme.grey600
            font { bold: true; pixelSize: Theme.size(10) }
        }
    }
    Item { Layout.fillWidth: true }
    Rectangle {
        implicitWidth: Math.min(pill.implicitWidth + Theme.size(18), Theme.size(150))
        implicitHeight: pill.implicitHeight + Theme.size(8)
        radius: height / 2
        color: Qt.alpha(Theme.verdictColor(header.bridge.verdict), 0.1)
        Accessible.role: Accessible.StaticText
        Accessible.name: header.bridge.pillLabel
        Accessible.description: header.bridge.pillText
        AppText {
            id: pill
            anchors.centerIn: parent
            text: header.bridge.pillText
            color: Theme.verdictTextColor(header.bridge.verdict)
            font { bold: true; pixelSize: Theme.size(11) }
            Accessible.ignored: true
        }
    }
    IconButton {
        symbol: "power"
        name: "Monitoring toggle"
        hint: header.bridge.isMonitoring ? "Tap to stop monitoring" : "Tap to start monitoring"
        color: header.bridge.isMonitoring ? Theme.tealText : Theme.grey600
        checked: header.bridge.isMonitoring
        Accessible.checkable: true
        Accessible.checked: header.bridge.isMonitoring
        onClicked: header.bridge.toggleMonitoring()
    }
}
