// A recording or assistant banner that a meeting shows.
import QtQuick

DetectionRow {
    id: row

    required property string detail
    required property string badge ///< or when it was last seen, if that is a while ago
    readonly property bool isLive: badge === "LIVE"
    line: isLive ? detail : detail + " · " + badge
    symbol: "record.circle.fill"

    Rectangle {
        visible: row.isLive
        anchors.verticalCenter: parent ? parent.verticalCenter : undefined
        width: live.implicitWidth + Theme.size(12)
        height: live.implicitHeight + Theme.size(4)
        radius: height / 2
        color: Theme.lightRed
        border { width: 1; color: Theme.redLine }
        AppText {
            id: live
            anchors.centerIn: parent
            text: "LIVE"
            color: Theme.redText
            font { bold: true; pixelSize: Theme.size(10) }
            Accessible.ignored: true
        }
    }
}
