// The current detections, in three groups.
import QtQuick

Column {
    id: detections

    required property var bridge

    spacing: Theme.size(14)
    topPadding: Theme.size(2)

    EmptyState {
        width: parent.width
        visible: detections.bridge.threatCount === 0
        verdict: detections.bridge.verdict
        headline: detections.bridge.pillText
        explanation: detections.bridge.explanation
        uncovered: detections.bridge.uncovered
    }
    Uncovered { text: detections.bridge.threatCount === 0 ? "" : detections.bridge.uncovered }
    DetectionGroup {
        width: parent.width
        symbol: "video.fill"
        title: "In This Meeting"
        listName: "In meeting detections"
        count: detections.bridge.indicators.count + detections.bridge.participants.count
        Repeater {
            model: detections.bridge.indicators
            RecordingIndicatorRow { width: parent ? parent.width : 0 }
        }
        Repeater {
            model: detections.bridge.participants
            ParticipantBotRow {
                required property string rowId
                width: parent ? parent.width : 0
                onObjected: detections.bridge.objectToParticipant(rowId)
                onAllowed: key => detections.bridge.allow(key)
            }
        }
    }
    DetectionGroup {
        width: parent.width
        symbol: "calendar.badge.exclamationmark"
        title: "Upcoming"
        listName: "Upcoming meeting detections"
        count: detections.bridge.upcoming.count
        Repeater {
            model: detections.bridge.upcoming
            CalendarBotRow {
                required property string rowId
                width: parent ? parent.width : 0
                onObjected: detections.bridge.objectToCalendar(rowId)
                onDismissed: detections.bridge.dismiss(rowId)
                onAllowed: key => detections.bridge.allow(key)
            }
        }
    }
    DetectionGroup {
        width: parent.width
        symbol: "desktopcomputer"
        title: "On This Mac"
        note: "Running locally on your Mac"
        listName: "Bot detections on this Mac"
        count: detections.bridge.onMac.count
        Repeater {
            model: detections.bridge.onMac
            ProcessBotRow {
                width: parent ? parent.width : 0
                onAllowed: key => detections.bridge.allow(key)
            }
        }
    }
}
