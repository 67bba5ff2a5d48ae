// The last step: the first scan, its results, and where to find the program from now on.
import QtQuick
import QtQuick.Layouts

OnboardingPage {
    id: step

    readonly property bool showResults: bridge.showResults
    readonly property bool isFound: bridge.verdict === Theme.Verdict.Found

    title: bridge.scanTitle

    RowLayout {
        width: parent.width
        spacing: Theme.size(8)
        Item { Layout.fillWidth: true }
        ScanningDots { visible: !step.bridge.isScanDone }
        AppText {
            text: step.bridge.phaseText
            color: step.bridge.isScanDone ? Theme.tealText : Theme.secondaryText
            font.bold: step.bridge.isScanDone
        }
        Item { Layout.fillWidth: true }
    }
    Column {
        id: results
        width: parent.width
        spacing: Theme.size(12)
        visible: step.showResults
        scale: step.showResults || Theme.reducesMotion ? 1 : 0.92
        Behavior on scale {
            enabled: !Theme.reducesMotion
            SpringAnimation { spring: 4; damping: 0.35; epsilon: 0.001 }
        }

        Card {
            width: parent.width
            color: step.isFound ? Theme.lightRed
                                : Qt.alpha(Theme.verdictColor(step.bridge.verdict), 0.08)
            border.color: step.isFound ? Theme.redLine
                                       : Qt.alpha(Theme.verdictColor(step.bridge.verdict), 0.4)
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: step.bridge.verdict === Theme.Verdict.Clear
                      ? "checkmark.shield" : Theme.verdictSymbol(step.bridge.verdict)
                color: Theme.verdictColor(step.bridge.verdict)
                size: Theme.size(34)
            }
            AppText {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: step.bridge.resultTitle
                color: Theme.verdictTextColor(step.bridge.verdict)
                font { bold: true; pixelSize: Theme.size(17) }
            }
            AppText {
                width: parent.width
                visible: !step.isFound
                horizontalAlignment: Text.AlignHCenter
                text: step.bridge.resultText
            }
            AppText {
                width: parent.width
                visible: !step.isFound && text !== ""
                horizontalAlignment: Text.AlignHCenter
                text: step.bridge.scanned
                color: Theme.secondaryText
                font.pixelSize: Theme.size(12)
            }
            Uncovered { text: step.bridge.uncovered }
        }
        ResultGroup {
            width: parent.width
            title: "On This Mac"
            lists: [step.bridge.onMac]
        }
        ResultGroup {
            width: parent.width
            title: "In Upcoming Meetings"
            lists: [step.bridge.upcoming]
        }
        ResultGroup {
            width: parent.width
            title: "In Active Meeting"
            lists: [step.bridge.participants, step.bridge.indicators]
        }
        Column {
            width: parent.width
            spacing: Theme.size(5)
            StatusLine {
                isOn: true
                text: "Process detection active"
            }
            StatusLine {
                isOn: step.bridge.watchesCalendar
                text: isOn ? "Calendar detection active" : "Calendar detection not configured"
            }
            StatusLine {
                isOn: step.bridge.watchesMeetings
                text: isOn ? "Meeting detection active" : "Meeting detection not configured"
            }
        }
        Card {
            width: parent.width
            color: Theme.grey100
            AppText {
                width: parent.width
                text: "What happens next"
                font.bold: true
            }
            AppText {
                width: parent.width
                text: "Quorva runs silently in your menu bar. When a bot is detected, you get an instant alert. Use the Objection button to copy a legal non-consent statement to your clipboard and paste it into the meeting chat."
                color: Theme.secondaryText
                font.pixelSize: Theme.size(12)
            }
        }
        Card {
            width: parent.width
            FeatureRow {
                symbol: "arrow.up"
                title: "Look for Quorva in your menu bar"
                text: "Quorva is now in your menu bar at the top of the screen"
            }
        }
    }

    buttons: OnboardingButton {
        title: "Start Using Quorva"
        enabled: step.showResults
        onClicked: step.bridge.complete()
    }
}
